"use strict";
/// Reads, judges and mends presets as the library does, by the data of the book alone: the document of `norvex-rules
/// json`, which must not share objects that are changed. A value is a node {name, type, value}; one of type "node" has
/// `children`, and a ratio is the text of its reduced terms.
function makeJudge(book) {
  const {judging} = book;
  const separator = "/";
  const join = (...steps) => steps.filter((step) => step !== "").join(separator);
  const own = (map, key) => (map && Object.hasOwn(map, key) ? map[key] : undefined);

  // ---------------------------------------------------------------- values
  const leaf = (name, type, value) => ({name, type, value});
  const node = (name, children = []) => ({name, type: "node", children});
  const isNode = (value) => value.type === "node";
  const copy = (value, name = value.name) => ({...structuredClone(value), name});
  const child = (tree, name) => tree?.children?.find((one) => one.name === name);
  const find = (tree, path) => path.split(separator).reduce((at, step) => (step === "" ? undefined : child(at, step)), tree);
  const nameIn = (path) => path.slice(path.lastIndexOf(separator) + 1);
  const parentIn = (tree, path) => (path.includes(separator) ? find(tree, path.slice(0, path.lastIndexOf(separator))) : tree);
  function setChild(tree, name, value = node(name)) {
    const at = tree.children.findIndex((one) => one.name === name);
    return (tree.children[at < 0 ? tree.children.length : at] = copy(value, name));
  }
  function removeChild(tree, name) {
    const at = tree.children?.findIndex((one) => one.name === name) ?? -1;
    if (at >= 0) tree.children.splice(at, 1);
  }
  /// The target becomes what the source is, under its own name.
  function become(target, source) {
    const taken = copy(source, target.name);
    for (const key of Object.keys(target)) delete target[key];
    Object.assign(target, taken);
  }
  function equal(one, two) {
    if (!one || !two || one.type !== two.type) return one === two;
    if (!isNode(one)) return one.value === two.value;
    return one.children.length === two.children.length &&
      one.children.every((below, at) => below.name === two.children[at].name && equal(below, two.children[at]));
  }
  function parseRatio(text) {
    const parts = /^(-?\d+)(?:\/(\d+))?$/.exec(text);
    if (!parts) return null;
    const [numerator, denominator] = [BigInt(parts[1]), BigInt(parts[2] ?? 1)];
    const largest = 2n ** 63n - 1n;
    if (denominator === 0n || denominator > largest || numerator > largest || numerator < -largest) return null;
    let [a, b] = [numerator < 0n ? -numerator : numerator, denominator];
    while (b) [a, b] = [b, a % b];
    return `${numerator / a}/${denominator / a}`;
  }
  const looksLikeRatio = (text) => text.includes("/") && parseRatio(text) !== null;
  const quotient = (ratio) => ratio.split("/").reduce((numerator, denominator) => numerator / denominator);
  function numberOf(value) {
    if (value.type === "int" || value.type === "double") return value.value;
    return value.type === "ratio" ? quotient(value.value) : null;
  }
  /// The shortest text that is read as the same number, with an exponent only where that is shorter.
  function doubleText(number) {
    if (!Number.isFinite(number)) return Number.isNaN(number) ? "nan" : number > 0 ? "inf" : "-inf";
    const [, sign, digits, power] = /^(-?)([\d.]+)e([+-]\d+)$/.exec(number.toExponential());
    const exponent = Number(power);
    const scientific = `${sign}${digits}e${power[0]}${String(Math.abs(exponent)).padStart(2, "0")}`;
    const plain = digits.replace(".", "");
    const point = exponent + 1;
    const fixed = sign + (point <= 0 ? `0.${"0".repeat(-point)}${plain}` : point >= plain.length ? plain.padEnd(point, "0") : `${plain.slice(0, point)}.${plain.slice(point)}`);
    return fixed.length <= scientific.length ? fixed : scientific;
  }
  function textOf(value) {
    if (isNode(value)) return `{${value.children.map((below) => `${below.name}: ${textOf(below)}`).join(", ")}}`;
    if (value.type === "none") return "";
    return value.type === "double" ? doubleText(value.value) : String(value.value);
  }
  /// What one line of a message can show.
  function excerpt(text) {
    const shown = [...text.replace(/[\n\r\t]/g, " ").replace(/[\0-\x1f\x7f-\x9f\u200e\u200f\u2028-\u202e\u2066-\u2069]/g, "")];
    return shown.length > 100 ? `${shown.slice(0, 100).join("")}…` : shown.join("");
  }
  const say = (name, ...texts) => judging.sentences[name].replace(/%([1-9])/g, (mark, place) => texts[place - 1] ?? mark);
  /// A value of the book, whose document writes ratios as texts.
  function fromPlain(name, value, type) {
    if (value === null) return leaf(name, "none");
    if (typeof value === "object") return node(name, Object.entries(value).map(([key, below]) => fromPlain(key, below)));
    return leaf(name, type ?? {boolean: "bool", number: "int", string: "text"}[typeof value], value);
  }

  // --------------------------------------------------------------- helpers
  const sections = {
    format: {list: book.formats, id: "container"},
    video_codec: {list: book.videoCodecs, id: "codec_id", stream: "video", carried: "video", limit: "video", word: "video"},
    audio_codec: {list: book.audioCodecs, id: "codec_id", stream: "audio", carried: "audio", limit: "audio", word: "audio"},
    subtitle_codec: {list: [], id: "codec_id", stream: "subtitles_text", carried: "subtitles", limit: "subtitle", word: "subtitles"},
  };
  const streamKinds = Object.entries(sections).filter(([, section]) => section.stream);
  const isCodecSection = (kind) => Boolean(own(sections, kind)?.stream);
  const streamPaths = /^streams_any_([^/]*)\/(.*)$/;
  const idTag = (kind) => own(sections, kind)?.id ?? "codec_id";
  const textAt = (tree, path) => { const value = find(tree, path); return value?.type === "text" ? value.value : ""; };
  const helperOf = (kind, id) => (own(sections, kind)?.list ?? book.filters).find((helper) => helper.id === (own(sections, kind) ? id : kind)) ?? null;
  const defaults = new Map();
  /// The helper's own defaults, as a tree that nobody changes.
  function defaultsOf(helper) {
    const read = (name, value, path) => (typeof value === "object" && value !== null
      ? node(name, Object.entries(value).map(([key, below]) => read(key, below, join(path, key))))
      : fromPlain(name, value, own(helper.parameters, path)?.type));
    if (!defaults.has(helper)) defaults.set(helper, read("", helper.defaults, ""));
    return defaults.get(helper);
  }
  const parametersOf = (kind, id) => helperOf(kind, id)?.parameters ?? own(judging.parameters, kind) ?? {};
  const parametersIn = (section) => parametersOf(section.name, textAt(section, idTag(section.name)));
  /// The helper's constraint on a parameter of its own section.
  const constraintOf = (helper, path) => helper?.constraints.find((one) => one.path === path && !/^(streams|filter_resample\/)/.test(path))?.allowed;
  function automaticOf(parameter) {
    const value = parameter?.automatic;
    return value === undefined ? null : fromPlain("", value, looksLikeRatio(String(value)) ? "ratio" : undefined);
  }
  function helpersOf(preset) {
    const named = Object.keys(sections).filter((kind) => kind !== "subtitle_codec").map((kind) => ({kind, id: textAt(child(preset, kind), idTag(kind))}));
    const filters = book.filters.filter((filter) => child(preset, filter.id)).map((filter) => ({kind: filter.id, id: ""}));
    return [...named, ...filters].map((one) => ({...one, helper: helperOf(one.kind, one.id)})).filter((one) => one.helper);
  }
  const helperIn = (preset, kind) => helpersOf(preset).find((one) => one.kind === kind) ?? {kind, id: textAt(preset, join(kind, idTag(kind))), helper: null};
  /// The resampler's own lists count only where no codec says what may be.
  function judgesOf(preset) {
    const helpers = helpersOf(preset);
    const hasCodec = helpers.some((one) => one.kind === "audio_codec");
    return helpers.filter((one) => !(hasCodec && one.kind === "filter_resample"));
  }
  const documentPath = (path) => judging.places.find((place) => place.to === path)?.from ?? path;

  // ------------------------------------------------------------ constraints
  const listed = (allowed) => (allowed.values ?? []).map((one) => fromPlain(one.name, one.value, typeof one.value === "object" ? undefined : allowed.type));
  const isListed = (allowed, value) => (allowed.values ?? []).some((one) => one.value === value);
  /// What is wrong with a value: nothing, that it is not allowed, or that it cannot be judged.
  function problemOf(allowed, value) {
    const answer = (isFine) => (isFine ? "none" : "notAllowed");
    switch (allowed.class) {
      case "set": {
        if (value.type === allowed.type) return answer(isListed(allowed, value.value));
        if (allowed.type !== "ratio" || value.type !== "text") return "wrongType";
        const ratio = parseRatio(value.value);
        return answer(ratio !== null && isListed(allowed, ratio));
      }
      case "codecs":
      case "layouts":
        return value.type === "text" ? answer(isListed(allowed, value.value)) : "wrongType";
      case "sampleFormats":
        return value.type === "text" && own(judging.sampleFormats, value.value) ? answer(isListed(allowed, value.value)) : "wrongType";
      case "range": {
        if (value.type !== "int" && value.type !== "double") return "wrongType";
        const number = allowed.type === "int" ? Math.trunc(value.value) : value.value;
        return answer(allowed.min <= number && number <= allowed.max);
      }
      case "multiple":
        return answer(value.type === "int" && ((value.value - allowed.rest) % allowed.divisor) === 0);
      case "sizes":
        return answer(value.type === "text" && value.value === "custom");
      default:
        return "none";
    }
  }
  const isLegal = (allowed, value) => problemOf(allowed, value) === "none";
  /// What correction makes of a value, or null where it makes nothing.
  function fixed(allowed, value) {
    const list = listed(allowed);
    if (problemOf(allowed, value) === "wrongType") return null;
    if (allowed.class === "set" && list.length === 0) return null;
    if (isLegal(allowed, value)) return value;
    switch (allowed.class) {
      case "set": {
        if (value.type !== allowed.type) return null;
        if (allowed.type === "text") return list[0];
        if (!["int", "double", "ratio"].includes(allowed.type)) return null;
        const distance = (one) => Math.abs(numberOf(one) - numberOf(value));
        return list.reduce((nearest, one) => (distance(one) < distance(nearest) ? one : nearest));
      }
      case "codecs":
        return allowed.fallback === undefined ? null : leaf("", "text", allowed.fallback);
      case "layouts": {
        if (list.length === 0) return null;
        const channels = (layout) => own(judging.layouts, layout.value);
        const target = channels(value);
        if (target === undefined) return list[list.length - 1];
        return list.reduce((best, one) => {
          const [count, bestCount] = [channels(one), channels(best)];
          return (count < bestCount && count >= target) || (count > bestCount && count <= target) ? one : best;
        });
      }
      case "sampleFormats": {
        if (list.length === 0) return null;
        const wanted = judging.sampleFormats[value.value];
        if (isListed(allowed, wanted.twin)) return leaf("", "text", wanted.twin);
        const cost = ({value: name}) => Math.abs(wanted.bits - judging.sampleFormats[name].bits) + (wanted.planar === judging.sampleFormats[name].planar ? 1 : 0);
        return list.reduce((nearest, one) => (cost(one) < cost(nearest) ? one : nearest));
      }
      case "range":
        return leaf("", allowed.type, (allowed.type === "int" ? Math.trunc(value.value) : value.value) < allowed.min ? allowed.min : allowed.max);
      default:
        return null;
    }
  }

  // --------------------------------------------------------------- reading
  /// Of a JSON text the tree. JSON.parse would forget which numbers have a point, and in what order names that are
  /// numbers stand.
  function parse(text) {
    const tokens = text.match(/"(?:[^"\\]|\\.)*"|-?\d[\d.eE+-]*|true|false|null|\S/g) ?? [];
    let at = 0;
    const next = () => tokens[at++];
    function read(name) {
      const token = next();
      if (token === "{") return readMembers(name);
      const value = JSON.parse(token);
      if (typeof value === "number") return leaf(name, /[.eE]/.test(token) ? "double" : "int", value);
      if (typeof value === "boolean") return leaf(name, "bool", value);
      if (typeof value !== "string") throw new Error(`'${name}' is neither a value nor a section`);
      return looksLikeRatio(value) ? leaf(name, "ratio", parseRatio(value)) : leaf(name, "text", value);
    }
    function readMembers(name) {
      const tree = node(name);
      for (let token = next(); token !== "}"; token = next()) {
        if (token === ",") continue;
        const key = JSON.parse(token);
        if (next() !== ":") throw new Error("this is no JSON");
        if (key === "$text") { next(); const value = tokens[at - 1]; tree.special = leaf(name, "text", JSON.parse(value)); continue; }
        if (child(tree, key)) throw new Error(`'${key}' stands there twice`);
        tree.children.push(read(key));
      }
      const [only] = tree.children;
      if (tree.special) return tree.special;
      if (only?.name === "$none") return leaf(name, "none");
      if (only?.name === "$double") return leaf(name, "double", {nan: NaN, inf: Infinity, "-inf": -Infinity}[only.value]);
      return tree;
    }
    return read("");
  }
  function parseFrameRate(text) {
    const parts = /^(\d{1,6})\.(\d{1,9})$/.exec(text);
    if (!parts) {
      const ratio = text.includes(".") ? null : parseRatio(text);
      return ratio && !/^[-0]/.test(ratio) ? ratio : null;
    }
    const number = BigInt(parts[1] + parts[2]);
    if (number === 0n) return null;
    const scale = 10n ** BigInt(parts[2].length);
    if (parts[2].length >= 2 && number % scale !== 0n) {
      const nominal = number / scale + 1n;
      const cut = (nominal * 1000n * scale) / 1001n;
      const rest = (nominal * 1000n * scale) % 1001n;
      if (number === cut || (number === cut + 1n && rest * 2n >= 1001n)) return parseRatio(`${nominal * 1000n}/1001`);
    }
    return parseRatio(`${number}/${scale}`);
  }
  /// The value as a value of that type, or null where it is none.
  function converted(value, type) {
    const isText = value.type === "text";
    const text = textOf(value);
    if (type === "bool") return isText && (text === "true" || text === "false") ? text === "true" : null;
    if (type === "double") return value.type === "int" || (isText && /^-?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i.test(text)) ? Number(text) : null;
    if (type === "int") return (isText && /^-?\d+$/.test(text)) || (value.type === "double" && Number.isInteger(value.value)) ? Number(text) : null;
    return type === "ratio" && (isText || value.type === "int" || value.type === "double") ? parseFrameRate(text) : null;
  }
  /// Gives a value that people wrote the type of its parameter.
  function interpret(value, parameter, allowed) {
    if (isNode(value) || value.type === "none" || parameter.type === "node") return;
    if (allowed && value.type === parameter.type && isLegal(allowed, value)) return;
    const text = textOf(value);
    const automatic = automaticOf(parameter);
    if (automatic && equal(value, automatic)) return;
    if (automatic && (text === "Auto" || text === "auto")) { become(value, automatic); return; }
    const isNumber = value.type === parameter.type && value.type !== "text";
    const meant = allowed && !isNumber && allowed.type === parameter.type && listed(allowed).find((one) => one.name === text);
    if (meant) { become(value, meant); return; }
    const other = converted(value, parameter.type);
    if (other !== null) become(value, leaf("", parameter.type, other));
  }
  function interpretNode(tree, kind, id, path, parameters) {
    for (const value of tree.children) {
      const below = join(path, value.name);
      if (kind === "format" && below === "streams") continue;
      const parameter = value.name.includes(separator) ? undefined : own(parameters, below);
      if (!parameter) {
        const isOfAnother = !value.name.includes(separator) && own(sections, kind)?.list.some((helper) => own(helper.parameters, below));
        if (isOfAnother) continue;
        throw new Error(`there is no parameter '${join(kind, below)}'`);
      }
      if ((parameter.type === "node") !== isNode(value)) throw new Error(`'${join(kind, below)}' must be a ${isNode(value) ? "value" : "section"}`);
      if (isNode(value)) interpretNode(value, kind, id, below, parameters);
      else interpret(value, parameter, constraintOf(helperOf(kind, id), below));
    }
  }
  function interpretSection(section) {
    const kind = section.name;
    if (!isNode(section)) throw new Error(`'${kind}' must be a section`);
    const id = textAt(section, idTag(kind));
    const parameters = parametersOf(kind, id);
    if (Object.keys(parameters).length === 0) throw new Error(`there is no section '${kind}'`);
    interpretNode(section, kind, id, "", parameters);
    const resize = kind === "filter_resize" && child(section, "resize");
    const size = resize && /^([1-9]\d*) x ([1-9]\d*)$/.exec(textAt(resize, "frame_size_mode"));
    if (!size) return;
    setChild(resize, "frame_size_mode", leaf("", "text", "custom"));
    ["width", "height"].forEach((tag, at) => setChild(resize, tag, leaf("", "int", Number(size[at + 1]))));
  }
  /// The tree of a preset's document. Throws for what is none.
  function readPreset(text) {
    const preset = child(parse(text), "preset");
    if (!preset?.children) throw new Error("the preset holds no sections");
    for (const section of preset.children) {
      const named = own(sections, section.name);
      const id = textAt(section, idTag(section.name));
      if (named?.list.length && !helperOf(section.name, id)) throw new Error(`there is no ${named.stream ? "codec" : "container"} '${id}'`);
      interpretSection(section);
    }
    for (const stream of find(preset, "format/streams")?.children ?? []) stream.children?.filter(isNode).forEach(interpretSection);
    return preset;
  }
  function jsonOf(value, indent) {
    if (!isNode(value)) {
      if (value.type === "none") return '{ "$none": true }';
      if (value.type === "double") return Number.isFinite(value.value) ? `${value.value}`.replace(/^-?\d+$/, "$&.0") : `{ "$double": "${doubleText(value.value)}" }`;
      if (value.type === "text" && looksLikeRatio(value.value)) return `{ "$text": ${JSON.stringify(value.value)} }`;
      return JSON.stringify(value.value);
    }
    const deeper = `${indent}  `;
    return value.children.length ? `{\n${value.children.map((below) => `${deeper}${JSON.stringify(below.name)}: ${jsonOf(below, deeper)}`).join(",\n")}\n${indent}}` : "{}";
  }
  const writePreset = (preset) => `{\n  "norvex-preset": 2,\n  "preset": ${jsonOf(preset, "  ")}\n}\n`;

  // --------------------------------------------------------------- judging
  /// The preset with values where rules look for them.
  function assemble(preset) {
    const assembled = node("preset", structuredClone(preset.children));
    for (const {from, to} of judging.places) {
      const value = find(assembled, from);
      if (!value) continue;
      let at = assembled;
      for (const step of to.split(separator)) {
        if (!isNode(at)) become(at, node(""));
        at = child(at, step) ?? setChild(at, step);
      }
      become(at, value);
    }
    return assembled;
  }
  function finding(named, kind, problem, path, message, more = {}) {
    return {helper: `${named.kind}${named.id && ` ${named.id}`}`, kind, problem, path, message, words: "", ...more};
  }
  /// What comes of one constraint and a value, or of its lack.
  function conclude(named, kind, path, value, allowed, when) {
    const problem = value ? problemOf(allowed, value) : "missing";
    const where = documentPath(path);
    const message = () => say(`${problem}${when ? "When" : ""}`, excerpt(where), value ? excerpt(textOf(value)) : "",
      allowed.words || judging.sentences.other, when ? excerpt(documentPath(when.path)) : "", when ? excerpt(textOf(when.value)) : "");
    return finding(named, kind, problem, where, problem === "none" ? "" : message(), {value, allowed, words: allowed.words, assembled: path});
  }
  function checkRoom(assembled, container) {
    const {helper} = container;
    const found = [];
    const refuse = (problem, path, message) => found.push(finding(container, "helper", problem, path, message));
    const word = (section) => judging.sentences[section.word];
    for (const [kind, section] of streamKinds) {
      if (child(assembled, kind) && !helper[section.carried]) refuse("noPlace", kind, say("section", excerpt(kind), container.id, word(section)));
    }
    const counts = {};
    const room = (path, type, limit, words) => {
      counts[limit] = (counts[limit] ?? 0) + 1;
      if (type !== "" && counts[limit] < 2) return;
      const ownStreams = child(defaultsOf(helper), "streams")?.children ?? [];
      const most = Math.max(own(helper.limits, limit) ?? 0, ownStreams.filter((stream) => textAt(stream, "type") === type).length, 0);
      if (counts[limit] > most) refuse("tooMany", path, say("surplus", excerpt(path), container.id, words, String(most)));
    };
    for (const stream of find(assembled, "format/streams")?.children ?? []) {
      const type = textAt(stream, "type");
      const path = join("format", "streams", stream.name);
      const [, section] = streamKinds.find(([, one]) => one.stream === type) ?? [];
      if (!section) room(path, "", "other", judging.sentences.otherTypes);
      else if (!helper[section.carried]) refuse("noPlace", path, say("stream", excerpt(path), container.id, word(section)));
      else room(path, type, section.limit, word(section));
      for (const [kind, other] of streamKinds) {
        if (other.stream === type || !child(stream, kind)) continue;
        refuse("noPlace", join(path, kind), say("otherKind", excerpt(join(path, kind)), excerpt(type)));
      }
    }
    return found;
  }
  /// The values that a constraint of a section is about, with their paths.
  function valuesOf(assembled, kind, key) {
    const stream = kind === "format" ? streamPaths.exec(key) : null;
    if (!stream) {
      const value = find(child(assembled, kind), key);
      return [[join(kind, key), value], [key, value ? undefined : find(assembled, key)]].filter(([, one]) => one);
    }
    const [, type, below] = stream;
    const streams = (find(assembled, "format/streams")?.children ?? []).filter((one) => textAt(one, "type") === type);
    return [...streams.map((one) => [join("format", "streams", one.name, below), find(one, below)]), [below, find(assembled, below)]].filter(([, one]) => one);
  }
  /// Everything that the helpers say of the preset and its values; of rules, those that apply.
  function explain(assembled, helpers) {
    return helpers.flatMap((named) => {
      const found = named.kind === "format" ? checkRoom(assembled, named) : [];
      for (const {path: key, allowed, widened} of named.helper.constraints) {
        for (const [path, value] of valuesOf(assembled, named.kind, key)) found.push(conclude(named, "constraint", path, value, widened ?? allowed));
      }
      for (const rule of named.helper.rules) {
        const condition = rule.when && find(assembled, rule.when.assembled);
        if (rule.when && !(condition && isLegal(rule.when.allowed, condition))) continue;
        const when = rule.when && {path: rule.when.assembled, value: condition};
        found.push(conclude(named, "rule", rule.assembled, find(assembled, rule.assembled), rule.widened ?? rule.allowed, when));
      }
      return found;
    });
  }
  /// Whether the value at that path keeps the source's own. Rules know, constraints do not.
  function isAutomatic(path, value) {
    if (path === "filter_resample/resample/sample_rate") return value.type === "int" && value.value === -1;
    if (path === "filter_resample/resample/channel_layout") return value.type === "text" && value.value === "unknown";
    return /^(filter_rate|video_codec)\/frame_rate$/.test(path) && value.type === "ratio" && value.value === "0/1";
  }
  const checkAssembled = (assembled, helpers) => explain(assembled, helpers).filter((one) =>
    one.problem !== "none" && !(one.kind === "constraint" && isAutomatic(one.assembled, one.value)));
  function foreignIn(tree, parameters, path = "") {
    const names = new Set();
    return tree.children.flatMap((value) => {
      const below = join(path, value.name);
      const parameter = value.name.includes(separator) ? undefined : own(parameters, below);
      const isStreams = below === "streams" && tree.name === "format";
      const isKnown = isStreams || (parameter && isNode(value) === (parameter.type === "node"));
      if (!isKnown || names.has(value.name)) return [below];
      names.add(value.name);
      return isNode(value) && !isStreams ? foreignIn(value, parameters, below) : [];
    });
  }
  /// The sections of the preset and those of its streams, with their paths.
  const sectionsOf = (preset) => preset.children.filter(isNode).flatMap((section) => [[section.name, section],
    ...(section.name === "format" ? child(section, "streams")?.children ?? [] : []).flatMap((stream) =>
      (stream.children ?? []).filter(isNode).map((below) => [join("format", "streams", stream.name, below.name), below]))]);
  const sizePath = "filter_resize/resize";
  const sizeIn = (section) => {
    const sides = ["width", "height"].map((tag) => child(section, tag));
    return sides.every((side) => side?.type === "int") ? sides.map((side) => side.value) : null;
  };
  /// The sizes that a codec offers, if it offers any.
  function sizesFor(tree, {helper}) {
    for (const rule of helper?.rules ?? []) {
      if (rule.assembled !== join(sizePath, "frame_size_mode")) continue;
      const condition = rule.when && find(tree, rule.when.assembled);
      if (rule.when && !(condition && isLegal(rule.when.allowed, condition))) continue;
      const sizes = listed(rule.allowed).filter(isNode).map(sizeIn);
      if (sizes.length) return {sizes, words: rule.allowed.words};
    }
    return null;
  }
  const hasSize = (sizes, size) => sizes.some((one) => one[0] === size[0] && one[1] === size[1]);
  function judgeSize(preset, assembled) {
    const size = sizeIn(find(assembled, sizePath));
    const codec = helperIn(preset, "video_codec");
    const offered = size && sizesFor(assembled, codec);
    if (!offered || hasSize(offered.sizes, size)) return [];
    return [finding(codec, "rule", "notAllowed", sizePath, say("size", sizePath, size.join(" x "), offered.words, codec.id), {words: offered.words})];
  }
  function tellOnce(found) {
    return found.filter((one, at) => found.findIndex((other) => other.path === one.path && other.problem === one.problem &&
      other.words === one.words && equal(other.value, one.value)) === at);
  }
  /// What the preset breaks, and what it leaves open.
  function judge(preset) {
    const foreign = sectionsOf(preset).flatMap(([path, section]) => {
      const parameters = parametersIn(section);
      if ((section.children.length === 1 && child(section, "codec_id")) || Object.keys(parameters).length === 0) return [];
      const id = textAt(section, idTag(section.name));
      return foreignIn(section, parameters).map((below) =>
        finding({kind: section.name, id}, "helper", "noPlace", join(path, below), say("foreign", excerpt(join(path, below)), excerpt(id || section.name))));
    });
    const assembled = assemble(preset);
    return tellOnce([...foreign, ...checkAssembled(assembled, judgesOf(preset)), ...judgeSize(preset, assembled)]);
  }

  // --------------------------------------------------------------- mending
  function remove(preset, path) {
    const parent = parentIn(preset, path);
    if (parent) removeChild(parent, nameIn(path));
  }
  function numberStreams(preset) {
    const streams = find(preset, "format/streams");
    if (streams && isNode(streams) && !streams.children.every((stream) => /^\d+$/.test(stream.name))) {
      streams.children.forEach((stream, at) => { stream.name = String(at); });
    }
  }
  function dropWhatHasNoRoom(preset) {
    const container = helperIn(preset, "format");
    const streams = find(preset, "format/streams");
    const hadStreams = streams?.children?.length > 0;
    if (container.helper) checkRoom(assemble(preset), container).forEach((one) => remove(preset, one.path));
    if (hadStreams && streams.children.length === 0) become(streams, child(defaultsOf(container.helper), "streams") ?? node(""));
    numberStreams(preset);
  }
  /// Limits and the header flag are facts of the container and no choices; limits may be narrower.
  function mendContainer(preset) {
    const {helper} = helperIn(preset, "format");
    if (!helper) return;
    const take = (path, isFine) => {
      const [value, ownValue] = [find(preset, join("format", path)), find(defaultsOf(helper), path)];
      if (value && ownValue && !isFine(value, ownValue)) become(value, ownValue);
    };
    take("global_header", equal);
    for (const limit of ["video", "audio", "subtitle", "other"]) {
      take(`limits/${limit}`, (value, most) => value.type === "int" && value.value >= 0 && value.value <= most.value);
    }
  }
  /// Gives a codec's section a codec that the container may have; whether it has another one now.
  function takeLegalCodec(preset, section) {
    const {helper} = helperIn(preset, "format");
    const codecs = helper?.constraints.find((one) => one.path === `streams_any_${sections[section.name].stream}/${section.name}/codec_id`)?.allowed;
    const id = child(section, "codec_id");
    if (!codecs || (id && isLegal(codecs, id)) || (section.name === "audio_codec" && id?.type === "text" && id.value === "auto")) return false;
    const legal = fixed(codecs, leaf("", "text", ""));
    if (legal) setChild(section, "codec_id", legal);
    return Boolean(legal);
  }
  /// Sees to it that a codec's section has what its bitrate mode needs; whether it was changed.
  function completeMode(preset, section) {
    const {helper} = helperIn(preset, section.name);
    const mode = textAt(section, "bitrate_mode");
    if (!helper || mode === "") return false;
    const start = defaultsOf(helper);
    const needed = mode === "cbr" ? ["bitrate"] : mode === "vbr" ? ["quality", ...(section.name === "audio_codec" ? ["bitrate"] : [])] : [];
    let isChanged = false;
    for (const tag of needed.filter((one) => !child(section, one))) {
      if (!child(start, tag)) {
        if (textAt(start, "bitrate_mode") === mode || !child(start, "bitrate_mode")) continue;
        become(child(section, "bitrate_mode"), child(start, "bitrate_mode"));
        completeMode(preset, section);
        return true;
      }
      setChild(section, tag, child(start, tag));
      isChanged = true;
    }
    return isChanged;
  }
  function startAnew(preset, section, isShared) {
    const id = textAt(section, "codec_id");
    const {helper} = helperIn(preset, section.name);
    const fresh = isShared && helper ? copy(defaultsOf(helper), section.name) : node(section.name, [leaf("codec_id", "text", id)]);
    const parameters = parametersIn(section);
    for (const tag of ["bitrate_mode", "bitrate", "quality", "thread_number", "frame_rate"]) {
      const [value, parameter] = [child(section, tag), own(parameters, tag)];
      if (!value || !parameter || value.type !== parameter.type) continue;
      const allowed = constraintOf(helperOf(section.name, id), tag);
      const isFine = allowed ? equal(value, automaticOf(parameter)) || isLegal(allowed, value) : tag === "thread_number" || tag === "frame_rate";
      if (isFine) setChild(fresh, tag, value);
    }
    if (isShared) completeMode(preset, fresh);
    become(section, fresh);
  }
  function mendSection(preset, path, section) {
    const isCodec = isCodecSection(section.name);
    const isCodecChanged = isCodec && takeLegalCodec(preset, section);
    const parameters = parametersIn(section);
    if (Object.keys(parameters).length === 0) return;
    const foreign = foreignIn(section, parameters);
    if (isCodec && (isCodecChanged || foreign.length > 0)) startAnew(preset, section, path === section.name);
    else foreign.forEach((below) => remove(section, below));
  }
  /// Takes the size nearest in area, of those that a codec offers.
  function mendSize(preset) {
    const section = find(preset, sizePath);
    const offered = section && isNode(section) && sizesFor(preset, helperIn(preset, "video_codec"));
    const size = (offered && sizeIn(section)) || [0, 0];
    if (!offered || hasSize(offered.sizes, size)) return;
    const distance = (one) => Math.abs(one[0] * one[1] - size[0] * size[1]);
    const nearest = offered.sizes.reduce((best, one) => (distance(one) < distance(best) ? one : best));
    ["width", "height"].forEach((tag, at) => setChild(section, tag, leaf("", "int", nearest[at])));
  }
  /// What may stand in the place of a broken value, the best first.
  function candidatesFor({assembled: path, value}, judges, ownDefault) {
    const number = numberOf(value);
    const all = judges.flatMap(listed);
    const plain = all.filter((one) => !isAutomatic(path, one));
    const mended = judges.flatMap((allowed) => [fixed(allowed, value),
      ...(number === null ? [] : ["min", "max"].filter((end) => allowed[end] !== undefined).map((end) => leaf("", allowed.type, allowed[end])))])
      .filter((one) => one && !isAutomatic(path, one));
    const automatic = all.filter((one) => isAutomatic(path, one));
    const standard = ownDefault ? [ownDefault] : [];
    if (number === null) return isCodecSection(path.split(separator)[0]) ? [...standard, ...mended, ...plain, ...automatic] : [...mended, ...standard, ...plain, ...automatic];
    // Of what only a test knows, the neighbours: an odd width becomes even.
    const near = (mended.length ? mended : [value]).filter((one) => one.type === "int" && Math.abs(one.value) <= 1e15).flatMap((one) => [leaf("", "int", one.value - 1), leaf("", "int", one.value + 1)]);
    const distance = (one) => { const far = Math.abs((numberOf(one) ?? NaN) - number); return far >= 0 ? far : Infinity; };
    const compare = (one, two) => { const [a, b] = [distance(one), distance(two)]; return a < b ? -1 : a > b ? 1 : 0; };
    return [...[...plain, ...near, ...mended, ...standard].sort(compare), ...automatic];
  }
  /// Gives a value that pleases all who judge it; whether there is one.
  function mendValue(preset, broken, looked) {
    const value = find(preset, broken.path);
    if (!value) return false;
    const judges = looked.filter((one) => one.allowed && one.path === broken.path).map((one) => one.allowed);
    const {helper} = helperIn(preset, broken.path.split(separator)[0]);
    const ownDefault = helper && broken.path.includes(separator) ? find(defaultsOf(helper), broken.path.slice(broken.path.indexOf(separator) + 1)) : null;
    const candidate = candidatesFor(broken, judges, ownDefault).find((one) => judges.every((allowed) => isLegal(allowed, one)));
    if (candidate) become(value, candidate);
    return Boolean(candidate);
  }
  function mendValues(preset) {
    const patience = 8;  // two rules may want opposites
    for (let round = 0; ; ++round) {
      mendSize(preset);
      const assembled = assemble(preset);
      const helpers = judgesOf(preset);
      const broken = checkAssembled(assembled, helpers);
      const looked = broken.length ? explain(assembled, helpers) : [];
      const isFirst = (one, at, all) => all.findIndex((other) => other.path === one.path) === at;
      const changed = broken.filter((one) => one.allowed && one.value).filter(isFirst).map((one) => mendValue(preset, one, looked));
      if (!changed.some(Boolean) || round === patience) return tellOnce(broken);
    }
  }
  function completeModes(preset) {
    const isSection = (kind) => { const section = child(preset, kind); return section && isNode(section); };
    return ["video_codec", "audio_codec"].filter(isSection).map((kind) => completeMode(preset, child(preset, kind))).some(Boolean);
  }
  const isBreach = (one) => one.problem !== "missing";
  /// The preset made legal, with what was broken, what is left of that, and what is left to the source.
  function mend(given) {
    const told = (found) => ({broken: found.filter(isBreach), open: found.filter((one) => !isBreach(one))});
    const first = told(judge(given));
    const preset = structuredClone(given);
    if (first.broken.length === 0) return {preset, ...first, left: []};
    numberStreams(preset);
    dropWhatHasNoRoom(preset);
    mendContainer(preset);
    sectionsOf(preset).forEach(([path, section]) => mendSection(preset, path, section));
    let left = mendValues(preset);
    if (completeModes(preset)) left = mendValues(preset);
    // Nothing helped: what is left out breaks nothing.
    for (let isChanged = left.some(isBreach); isChanged;) {
      left = judge(preset);
      isChanged = false;
      for (const {path} of left.filter(isBreach)) {
        isChanged ||= Boolean(find(preset, path));
        remove(preset, path);
      }
    }
    const last = told(left);
    return {preset, broken: first.broken, left: last.broken, open: last.open};
  }

  return {assemble, automaticOf, converted, defaultsOf, documentPath, find, fixed, helperOf, interpret, isLegal, isNode, judge, judgesOf, leaf,
    listed, mend, node, parametersOf, readPreset, remove, setChild, textOf, writePreset};
}
