const {shared, book} = JSON.parse(document.getElementById("book").textContent);
/// What helpers share stands once in a table, and elsewhere as its index there.
const sharedNames = ["allowed", "parameters", "facts", "widened", "when"];
function resolve(node) {
  for (const [name, value] of Object.entries(node)) {
    if (typeof value === "object" && value !== null) resolve(value);
    else if (sharedNames.includes(name) && typeof value === "number") node[name] = shared[value];
  }
}
resolve(shared);
for (const allowed of shared.filter((one) => one.values)) {
  const values = allowed.values = allowed.values.map((value) => (typeof value === "object" ? value : {name: String(value), value}));
  const names = [...new Set(values.map(({name, value}) => (typeof value === "boolean" ? String(value) : name)))];
  allowed.words ??= names.length === 1 ? names[0] : book.judging.sentences.oneOf.replace("%1", () => names.join(", "));
}
resolve(book);
const $ = (id) => document.getElementById(id);
const make = (tag, attributes = {}, ...children) => {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === true) node.setAttribute(name, "");
    else if (value !== false && value !== null) node.setAttribute(name, value);
  }
  node.append(...children);
  return node;
};
const text = (value) => (typeof value === "object" && value !== null ? "" : String(value));
/// Names are compared without case and punctuation: "MPEG-4" and "mpeg4" are one.
const normal = (words) => words.toLowerCase().replace(/[^\p{L}\p{N}]+/gu, "");
const sections = [
  ["formats", "Containers"], ["videoCodecs", "Video codecs"], ["audioCodecs", "Audio codecs"], ["filters", "Filters"],
];
const codecLists = {video: "videoCodecs", audio: "audioCodecs"};
const codecIds = {};
for (const [kind, list] of Object.entries(codecLists)) codecIds[kind] = new Map(book[list].map((c) => [c.id, c]));
codecIds.subtitles = new Map(book.subtitleCodecs.map((c) => [c.id, c]));
const formats = new Map(book.formats.map((format) => [format.id, format]));
// Names for people.
const lastTag = (path) => path.slice(path.lastIndexOf("/") + 1);
const parameterName = (path) => book.names.parameters[lastTag(path)]?.name ?? lastTag(path).replaceAll("_", " ");
const codecName = (id, kind) => (kind ? [codecIds[kind]] : Object.values(codecIds)).map((ids) => ids.get(id)?.name).find(Boolean) ?? book.names.values.codec_id?.[id] ?? id;
const formatName = (format) => `${format.name}${format.extensions.length ? ` (.${format.extensions[0]})` : ""}`;
function valueName(path, value) {
  const tag = lastTag(path);
  if (tag === "codec_id") return codecName(value, /(video|audio|subtitle)_codec/.exec(path)?.[1].replace("subtitle", "subtitles"));
  if (tag === "container") return formats.has(value) ? formatName(formats.get(value)) : value;
  const name = book.names.values[tag]?.[value];
  if (name !== undefined) return name;
  const unit = /^-?[\d.]+$/.test(value) && book.names.parameters[tag]?.unit;
  if (unit === "bit/s" || unit === "Hz") return Math.abs(value) < 1000 ? `${value} ${unit}` : value >= 1e6 && unit === "bit/s" ? `${value / 1e6} M${unit}` : `${value / 1000} k${unit}`;
  return unit ? `${value} ${unit}` : String(value);
}
const hasEncoder = (kind, id) => Boolean(codecIds[kind].get(id)?.encoder);
const linkTo = (list, id, words = id) => make("a", {href: `#${list}-${id}`}, words);
const codecLink = (kind, id) => (codecLists[kind] && codecIds[kind].has(id) ? linkTo(codecLists[kind], id, codecName(id, kind)) : document.createTextNode(codecName(id, kind)));
const tryLink = (format, kind, id) => `#try?format=${format.id}${kind === "video" || kind === "audio" ? `&${kind}_codec=${id}` : ""}`;
/// What an encoder declares, in a line.
function factsOf({facts, encoder}) {
  if (!facts) return "nothing here encodes it";
  const pictures = Object.values(facts.pixelFormats);
  const each = (value) => [...new Set(pictures.map(value))];
  const bits = each((one) => one.bits).filter(Boolean).sort((a, b) => a - b);
  return [`encoder ${encoder}`, bits.length && `${bits.join(", ")} bit`, each((one) => one.sampling).join(", "),
    pictures.some((one) => one.alpha) && "transparency", pictures.some((one) => one.float) && "floating point",
    facts.lossless && (facts.lossy ? "lossy or lossless" : "lossless"), facts.intraOnly && pictures.length && "every frame stands for itself",
    facts.threads.length && `works side by side on ${facts.threads.map((one) => (one === "own" ? "threads of its own" : one)).join(" and ")}`,
    facts.hardware && "hardware may do the work", facts.experimental && "experimental"].filter(Boolean).join("; ");
}

$("about").textContent = `Norvex ${book.library} on FFmpeg ${book.ffmpeg}: ${book.formats.length} containers, ` +
  `${book.videoCodecs.length} video codecs, ${book.audioCodecs.length} audio codecs, ${book.filters.length} filters.`;

// ------------------------------------------------------------------ grid
/// The codecs whose pictures a container takes as covers alone: a rule says so.
function coversOf(format) {
  const rule = format.rules.find((r) => r.path === "video_codec/cover" && r.when?.path === "video_codec/codec_id");
  return new Set((rule?.when.allowed.values ?? []).map((value) => value.value));
}
const isStill = (format) => format.limits.video > 0 && format.limits.audio + format.limits.subtitle + format.limits.other === 0;
/// What a container carries of a kind of the grid: the kind in the book, and its codecs.
const gridKinds = {
  film: ["video", (format) => (isStill(format) ? [] : format.video.codecs.filter((id) => !coversOf(format).has(id)))],
  audio: ["audio", (format) => format.audio.codecs],
  covers: ["video", (format) => format.video.codecs.filter((id) => coversOf(format).has(id))],
  stills: ["video", (format) => (isStill(format) ? format.video.codecs : [])],
  subtitles: ["subtitles", (format) => format.subtitles.codecs],
};
/// Why a pair does not go, where that is known of the running FFmpeg.
const faultOf = (format, kind, id) => format[kind]?.faults[id] ?? "";
function drawGrid() {
  const [kind, codecsOf] = gridKinds[$("kind").value];
  const wantedFormat = normal($("gridFormat").value);
  const wantedCodec = normal($("gridCodec").value);
  const onlyEncodable = $("encodable").checked;
  const names = new Map();
  const isNamed = (list, id, wanted) => {
    if (!names.has(id)) names.set(id, [id, codecName(id, kind), ...(book[list]?.find((h) => h.id === id)?.otherNames ?? [])].map(normal));
    return names.get(id).some((name) => name.includes(wanted));
  };
  const shows = (id) => isNamed(codecLists[kind] ?? "subtitleCodecs", id, wantedCodec) && (!onlyEncodable || hasEncoder(kind, id));
  const rows = book.formats.filter((format) => format[kind] && [format.id, format.name, ...format.otherNames].some((name) => normal(name).includes(wantedFormat)))
    .map((format) => [format, codecsOf(format).filter(shows)]).filter(([, codecs]) => codecs.length > 0);
  const columns = [...new Set(rows.flatMap(([, codecs]) => codecs))].sort((a, b) => codecName(a, kind).localeCompare(codecName(b, kind)));
  const head = make("tr", {}, make("th", {scope: "col"}, `${rows.length} containers`));
  for (const id of columns) head.append(make("th", {scope: "col"}, codecLists[kind] && codecIds[kind].has(id) ? codecLink(kind, id) : make("a", {}, codecName(id, kind))));
  const body = make("tbody");
  for (const [format, codecs] of rows) {
    const row = make("tr", {}, make("th", {scope: "row", title: formatName(format)}, linkTo("formats", format.id, formatName(format))));
    for (const id of columns) {
      if (!codecs.includes(id)) { row.append(make("td")); continue; }
      const isDefault = format[kind].default === id;
      const absent = !hasEncoder(kind, id);
      const fault = faultOf(format, kind, id);
      const words = `${format.name} carries ${codecName(id, kind)}${isDefault ? ", its default" : ""}${absent ? "; nothing here encodes it" : fault ? `; ${fault}` : ""}`;
      row.append(make("td", {class: `yes${isDefault ? " default" : ""}${absent ? " absent" : fault ? " fault" : ""}`, title: words},
        make("a", {href: tryLink(format, kind, id), "aria-label": words}, absent ? "○" : fault ? "✕" : isDefault ? "●" : "•")));
    }
    body.append(row);
  }
  $("gridTable").replaceChildren(make("thead", {}, head), body);
}
for (const id of ["kind", "gridFormat", "gridCodec", "encodable"]) $(id).addEventListener("input", drawGrid);
$("gridTable").addEventListener("pointerover", ({target}) => {
  const column = target.closest("td, thead th")?.cellIndex ?? 0;
  for (const cell of $("gridTable").querySelectorAll(".on")) cell.classList.remove("on");
  if (column > 0) for (const row of $("gridTable").rows) row.cells[column].classList.add("on");
});

// -------------------------------------------------------------- sections
function leaves(node, path = "") {
  return Object.entries(node).flatMap(([name, value]) => {
    const below = path ? `${path}/${name}` : name;
    const isNode = typeof value === "object" && value !== null;
    return isNode && Object.keys(value).length > 0 ? leaves(value, below) : [[below, isNode ? "(empty)" : text(value)]];
  });
}
/// A value as people read it, and as programs do where that differs. A colour is a number of alpha, red, green and blue.
function shown(path, value) {
  const name = valueName(path, value);
  const isColour = path.endsWith("color") && /^\d+$/.test(value);
  const digits = isColour && Number(value).toString(16).padStart(8, "0");
  const swatch = isColour ? [make("span", {class: "swatch", style: `background: #${digits.slice(2)}${digits.slice(0, 2)}`}), " "] : [];
  return [...swatch, name, ...(name === value ? [] : [" ", make("code", {class: "soft"}, value)])];
}
/// What a parameter is called, and its path.
const parameterNodes = (path) => [parameterName(path), " ", make("code", {class: "soft"}, path)];
function valueTable(rows) {
  const table = make("table", {class: "values"}, make("tbody"));
  for (const [name, value] of rows) {
    table.firstChild.append(make("tr", {}, make("th", {scope: "row"}, ...parameterNodes(name)), make("td", {}, ...value)));
  }
  return table;
}
/// What is allowed, in names for people.
function words(allowed, path) {
  if (allowed.values && !allowed.values.some((one) => typeof one.value === "object")) return [...new Set(allowed.values.map((one) => valueName(path, String(one.value))))].join(", ");
  if (allowed.min !== undefined) return `${valueName(path, String(allowed.min))} to ${valueName(path, String(allowed.max))}`;
  return allowed.words || "whatever its method accepts";
}
const kindOf = (path) => (path.includes("video_codec/codec_id") ? "video" : path.includes("audio_codec/codec_id") ? "audio" : null);
function allowedNodes(path, allowed) {
  const kind = kindOf(path);
  if (!kind || !allowed.values) return [words(allowed, path)];
  return allowed.values.flatMap((value, index) => [index ? ", " : "", codecLink(kind, value.value)]);
}
function ruleItem(rule) {
  const item = make("li");
  if (rule.when) item.append("When ", ...parameterNodes(rule.when.path), " is ", ...allowedNodes(rule.when.path, rule.when.allowed), ": ");
  item.append(...parameterNodes(rule.path), " is ", words(rule.allowed, rule.path), ".");
  return item;
}
function summaryOf(list, helper) {
  if (list === "formats") {
    return ["video", "audio", "subtitles"].filter((kind) => helper[kind])
      .map((kind) => `${kind} ${codecName(helper[kind].default, kind)}${helper[kind].codecs.length > 1 ? ` + ${helper[kind].codecs.length - 1}` : ""}`).join(", ");
  }
  if (list === "filters") return "";
  return helper.encoder ? `encoder ${helper.encoder}` : "nothing here encodes it";
}
function carriersOf(list, id) {
  const kind = Object.keys(codecLists).find((k) => codecLists[k] === list);
  return kind ? book.formats.filter((format) => format[kind]?.codecs.includes(id)) : [];
}
function fill(body, list, helper) {
  const line = (title, ids, link) => ids.length && body.append(make("h4", {}, title), make("p", {}, ...ids.flatMap((id, index) => [index ? ", " : "", link(id)])));
  if (list === "formats") {
    const covers = coversOf(helper);
    const pictures = helper.video?.codecs ?? [];
    line("Carries of pictures", pictures.filter((id) => !covers.has(id)), (id) => codecLink("video", id));
    line("Carries as a cover", pictures.filter((id) => covers.has(id)), (id) => codecLink("video", id));
    line("Carries of sound", helper.audio?.codecs ?? [], (id) => codecLink("audio", id));
    line("Carries of subtitles", helper.subtitles?.codecs ?? [], (id) => `${codecName(id, "subtitles")}${hasEncoder("subtitles", id) ? "" : " (nothing here encodes it)"}`);
    const faults = ["video", "audio"].flatMap((kind) => Object.entries(helper[kind]?.faults ?? {}).map(([id, fault]) => `${codecName(id, kind)}: ${fault}`));
    if (faults.length) body.append(make("h4", {}, "Does not go"), make("p", {}, faults.join("; ")));
    body.append(make("p", {}, make("a", {href: `#try?format=${helper.id}`}, "Try it")));
  }
  if (helper.facts !== undefined) body.append(make("h4", {}, "Facts of the running build"), make("p", {}, factsOf(helper)));
  line("Carried by", carriersOf(list, helper.id).map((format) => format.id), (id) => linkTo("formats", id, formats.get(id).name));
  line("Needs", helper.requires, (id) => linkTo("filters", id, parameterName(id)));
  const lists = new Map(helper.constraints.map((c) => [c.path, c.allowed.values]));
  body.append(make("h4", {}, "Defaults"), valueTable(leaves(helper.defaults).map(([path, value]) => {
    const values = lists.get(path);
    const isListed = !values || values.some((one) => text(one.value) === value);
    return [path, [...shown(path, value), isListed ? "" : make("span", {class: "soft"}, " (its own list lacks it)")]];
  })));
  // What a container carries stands above.
  const constraints = helper.constraints.filter((c) => !c.path.startsWith("streams_any_")).map((c) => [c.path, [words(c.allowed, c.path)]]);
  if (constraints.length) body.append(make("h4", {}, "Allowed"), valueTable(constraints));
  if (helper.rules.length) body.append(make("h4", {}, "Rules"), make("ul", {class: "rules"}, ...helper.rules.map(ruleItem)));
}
/// What search looks at: the names, and a line for each value and rule.
function linesOf(list, helper) {
  // Names for people, and what programs go by.
  const both = (path, allowed) => [words(allowed, path), allowed.words].filter((one, at, all) => all.indexOf(one) === at).join("; ");
  const lines = [...leaves(helper.defaults).map(([path, value]) => `${parameterName(path)} ${valueName(path, value)}; ${path} ${value}`),
    ...helper.constraints.map((c) => `${parameterName(c.path)} ${c.path} ${both(c.path, c.allowed)}`),
    ...helper.rules.map((r) => `${parameterName(r.path)} ${r.path} is ${both(r.path, r.allowed)}${r.when ? `, when ${r.when.path} is ${both(r.when.path, r.when.allowed)}` : ""}`)];
  if (list === "formats") for (const kind of ["video", "audio", "subtitles"]) if (helper[kind]) lines.unshift(`carries ${helper[kind].codecs.map((id) => `${codecName(id, kind)} ${id}`).join(", ")}`);
  if (helper.facts !== undefined) lines.unshift(factsOf(helper));
  return lines;
}
const articles = [];
for (const [list, title] of sections) {
  const section = make("section", {id: list, "aria-label": title}, make("h2", {}, title));
  for (const helper of book[list]) {
    const body = make("div", {class: "body"});
    const details = make("details", {}, make("summary", {}, make("h3", {}, list === "formats" ? formatName(helper) : helper.name, " ", make("code", {class: "soft"}, helper.id)), make("span", {class: "soft"}, summaryOf(list, helper))), body);
    // Filled when it is opened first: nobody opens all.
    details.addEventListener("toggle", () => { if (details.open && !body.firstChild) fill(body, list, helper); });
    const article = make("article", {id: `${list}-${helper.id}`}, details);
    articles.push({article, list, helper, names: [helper.id, helper.name, ...helper.otherNames]});
    section.append(article);
  }
  $("sections").append(section);
}

// ---------------------------------------------------------------- search
/// Where a word is found: anywhere in a name, and where a word of a line begins, in whatever order people put its parts.
function matcher(word) {
  const name = normal(word);
  const parts = word.split(/[^\p{L}\p{N}]+/u).filter(Boolean).map((part) => new RegExp(`(?<![\\p{L}\\p{N}])${part}`, "iu"));
  return {
    parts,
    isNamed: (names) => name !== "" && names.some((one) => normal(one).includes(name)),
    isIn: (line) => parts.length > 0 && parts.every((part) => part.test(line)),
  };
}
/// The text with what was found marked.
function marked(words, {parts}) {
  const nodes = [];
  for (let rest = words; rest;) {
    const found = parts.map((part) => part.exec(rest)).filter(Boolean).sort((a, b) => a.index - b.index)[0];
    if (!found) { nodes.push(rest); break; }
    nodes.push(rest.slice(0, found.index), make("mark", {}, found[0]));
    rest = rest.slice(found.index + found[0].length);
  }
  return nodes;
}
/// Of a long line what stands about the first part.
function excerpt(line, {parts}) {
  const from = Math.max(0, parts[0].exec(line).index - 80);
  return `${from ? "… " : ""}${line.slice(from, from + 180)}${from + 180 < line.length ? " …" : ""}`;
}
function search() {
  const wanted = $("search").value.trim().split(/\s+/).filter(Boolean).map(matcher);
  let count = 0;
  for (const entry of articles) {
    const {article, list, helper, names} = entry;
    article.querySelector(".found")?.remove();
    const told = [];
    article.hidden = !wanted.every((word) => {
      if (word.isNamed(names)) {
        const other = names.slice(2).find((name) => word.isNamed([name]));
        if (other && !word.isNamed(names.slice(0, 2))) told.push(["also called ", make("mark", {}, other)]);
        return true;
      }
      entry.lines ??= linesOf(list, helper);
      const line = entry.lines.find(word.isIn);
      if (line) told.push(marked(excerpt(line, word), word));
      return Boolean(line);
    });
    if (article.hidden) continue;
    count += 1;
    if (told.length) article.append(make("p", {class: "found"}, ...told.flatMap((parts, index) => [index ? "; " : "", ...parts])));
  }
  for (const [list] of sections) $(list).hidden = articles.every((one) => one.list !== list || one.article.hidden);
  for (const id of ["grid", "try"]) $(id).hidden = wanted.length > 0;
  $("nothing").hidden = count > 0;
}
$("search").addEventListener("input", () => {
  search();
  history.replaceState({search: $("search").value}, "");
});
function openTarget() {
  if (location.hash.startsWith("#try?")) {
    if ($("search").value) { $("search").value = ""; search(); }
    openDialog(location.hash.slice(5));
    $("try").scrollIntoView();
    return;
  }
  const target = location.hash && document.getElementById(decodeURIComponent(location.hash.slice(1)));
  const details = target && target.tagName === "ARTICLE" && target.querySelector("details");
  if (!details) return;
  if (target.hidden) { $("search").value = ""; search(); }
  details.open = true;
  target.querySelector("summary").focus({preventScroll: true});
  target.scrollIntoView();
}
// Each place that a reader was at keeps its search, so that Back brings it back.
addEventListener("popstate", ({state}) => {
  if (state && state.search !== $("search").value) { $("search").value = state.search; search(); }
  openTarget();
  history.replaceState({search: $("search").value}, "");
});
addEventListener("keydown", (event) => {
  if (event.key === "/" && !/^(INPUT|SELECT)$/.test(document.activeElement.tagName)) { event.preventDefault(); $("search").focus(); }
  if (event.key === "Escape" && document.activeElement === $("search")) { $("search").value = ""; search(); }
});
