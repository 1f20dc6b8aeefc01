// ---------------------------------------------------------------- try it
/// Made on first use: most readers look things up and choose nothing.
let judgeOfBook = null;
const theJudge = () => (judgeOfBook ??= makeJudge(book));
const idTags = {format: "container", video_codec: "codec_id", audio_codec: "codec_id"};
const trySections = [...Object.keys(idTags), ...book.filters.map((filter) => filter.id)];
let preset = null;
/// What each control is about, by the value's path in the preset: its row, and how it shows the value and the faults.
let controls = new Map();

const valueAt = (path) => theJudge().find(preset, path);
function setValue(path, value) {
  const {setChild, remove, find, node} = theJudge();
  if (value === null) { remove(preset, path); return; }
  const steps = path.split("/");
  let at = preset;
  for (const step of steps.slice(0, -1)) at = find(at, step) ?? setChild(at, step, node(step));
  setChild(at, steps[steps.length - 1], value);
}
/// Starts a section anew from the defaults of a helper, or takes it out.
function startSection(kind, id) {
  const {setChild, remove, helperOf, defaultsOf, leaf, find} = theJudge();
  const helper = helperOf(kind, id);
  if (!helper && !id) { remove(preset, kind); return; }
  const section = setChild(preset, kind, helper ? defaultsOf(helper) : undefined);
  remove(section, "streams");
  if (idTags[kind] && !find(section, idTags[kind])) setChild(section, idTags[kind], leaf("", "text", id));
}
const idOf = (kind) => (idTags[kind] ? valueAt(`${kind}/${idTags[kind]}`)?.value ?? "" : valueAt(kind) ? kind : "");

/// What judges a value now, of those who list or bound it: the section's own constraint first.
function judgesAt(path) {
  const kind = path.split("/")[0];
  const {judgesOf, assemble, find, isLegal, documentPath} = theJudge();
  const assembled = assemble(preset);
  return judgesOf(preset).flatMap(({kind: section, helper}) => [
    ...helper.constraints.filter((one) => section === kind && `${kind}/${one.path}` === path).map((one) => one.widened ?? one.allowed),
    ...helper.rules.filter((rule) => documentPath(rule.assembled) === path && (!rule.when || (find(assembled, rule.when.assembled) && isLegal(rule.when.allowed, find(assembled, rule.when.assembled)))))
      .map((rule) => rule.widened ?? rule.allowed)]);
}
const ownConstraint = (kind, path) => {
  const one = theJudge().helperOf(kind, idOf(kind))?.constraints.find((constraint) => constraint.path === path);
  return one && (one.widened ?? one.allowed);
};
function aspect(width, height) {
  let [a, b] = [width, height];
  while (b) [a, b] = [b, a % b];
  return `${width / a}:${height / a}`;
}

// -------------------------------------------------------------- controls
/// Each kind of control is made once for its section, and then shows what the preset has: {input, show}.
function listControl(id, path, values) {
  const {textOf, isLegal} = theJudge();
  const key = (value) => `${value.type} ${textOf(value)}`;
  const choices = new Map(values.map((value) => [key(value), value]));
  const input = make("select", {id});
  input.addEventListener("change", () => {
    const size = /^size (\d+) (\d+)$/.exec(input.value);
    if (size) {
      setValue(path, theJudge().leaf("", "text", "custom"));
      ["width", "height"].forEach((tag, at) => setValue(path.replace(/[^/]*$/, tag), theJudge().leaf("", "int", Number(size[at + 1]))));
    } else {
      setValue(path, choices.get(input.value) ?? null);
    }
    refresh();
  });
  const show = () => {
    const value = valueAt(path);
    const judges = judgesAt(path);
    if (value && !choices.has(key(value))) choices.set(key(value), value);
    const options = [...choices].map(([name, choice]) => make("option", {value: name},
      `${valueName(path, textOf(choice))}${judges.every((allowed) => isLegal(allowed, choice)) ? "" : " ✕"}`));
    const sizes = judges.filter((allowed) => allowed.class === "sizes").flatMap((allowed) => allowed.values.map((one) => one.value));
    const [width, height] = ["width", "height"].map((tag) => valueAt(path.replace(/[^/]*$/, tag))?.value);
    const sizeOptions = sizes.map((size) => make("option", {value: `size ${size.width} ${size.height}`}, `${size.width}x${size.height} (${aspect(size.width, size.height)})`));
    input.replaceChildren(make("option", {value: ""}, "not set"), ...options, ...(sizes.length ? [make("optgroup", {label: "Sizes of the codec"}, ...sizeOptions)] : []));
    const isOffered = value?.value === "custom" && sizes.some((size) => size.width === width && size.height === height);
    input.value = isOffered ? `size ${width} ${height}` : value ? key(value) : "";
  };
  return {input, show};
}
/// A field, and beside it a slider where the range is one that a hand can move through.
function numberControl(id, path, type, allowed, name) {
  const {leaf} = theJudge();
  const [min, max] = [allowed?.min, allowed?.max];
  const field = make("input", {id, type: "number", min, max, step: type === "int" ? allowed?.step ?? 1 : "any"});
  const isWide = max / Math.max(min, 1) > 1000;
  const toSlider = (value) => (isWide ? Math.round((1000 * Math.log(Math.max(value, 1) / Math.max(min, 1))) / Math.log(max / Math.max(min, 1))) : value);
  const fromSlider = (at) => (isWide ? Number((Math.max(min, 1) * (max / Math.max(min, 1)) ** (at / 1000)).toPrecision(2)) : at);
  const hasSlider = min !== undefined && max <= 1e12;
  const slider = hasSlider && make("input", {type: "range", "aria-label": `${name}, slider`, min: isWide ? 0 : min, max: isWide ? 1000 : max, step: type === "int" || isWide ? 1 : "any"});
  const output = make("output", {for: id, class: "soft"});
  const set = (value) => { setValue(path, value === "" || Number.isNaN(Number(value)) ? null : leaf("", type, Number(value))); refresh(); };
  field.addEventListener("change", () => set(field.value));
  if (slider) slider.addEventListener("input", () => set(fromSlider(Number(slider.value))));
  const show = () => {
    const value = valueAt(path);
    const text = value ? theJudge().textOf(value) : "";
    field.value = text;
    if (slider && value) slider.value = toSlider(value.value);
    if (slider) slider.setAttribute("aria-valuetext", text && valueName(path, text));
    output.value = text && valueName(path, text) !== text ? valueName(path, text) : "";
  };
  return {input: field, more: [slider, output].filter(Boolean), show};
}
function switchControl(id, path) {
  const input = make("input", {id, type: "checkbox", role: "switch"});
  input.addEventListener("change", () => { setValue(path, theJudge().leaf("", "bool", input.checked)); refresh(); });
  return {input, show: () => { input.checked = valueAt(path)?.value === true; }};
}
/// A colour is a number of alpha, red, green and blue; here it hides what is behind it.
function colourControl(id, path) {
  const opaque = 0xff000000;
  const input = make("input", {id, type: "color"});
  input.addEventListener("change", () => { setValue(path, theJudge().leaf("", "int", opaque + parseInt(input.value.slice(1), 16))); refresh(); });
  return {input, show: () => { input.value = `#${((valueAt(path)?.value ?? opaque) % 0x1000000).toString(16).padStart(6, "0")}`; }};
}
function textControl(id, path, type) {
  const input = make("input", {id, type: "text", autocomplete: "off"});
  input.addEventListener("change", () => {
    const {leaf, converted} = theJudge();
    const given = leaf("", "text", input.value);
    const other = type === "ratio" ? converted(given, type) : null;
    setValue(path, input.value === "" ? null : other === null ? given : leaf("", type, other));
    refresh();
  });
  return {input, show: () => { const value = valueAt(path); input.value = value ? theJudge().textOf(value) : ""; }};
}
function makeControl(kind, path, parameter) {
  const {listed, fromPlain, automaticOf, isNode} = theJudge();
  const whole = `${kind}/${path}`;
  const id = `try-${whole.replaceAll("/", "-")}`;
  const name = `${path.startsWith("limits/") ? `${parameterName("limits")}: ` : ""}${parameterName(whole)}`;
  const own = ownConstraint(kind, path);
  const lists = own?.values ? [own] : judgesAt(whole).filter((allowed) => allowed.values);
  const automatic = automaticOf(parameter);
  const known = (automatic ? [automatic] : []).concat(lists.flatMap(listed).filter((value) => !isNode(value)));
  const values = known.filter((value, at) => known.findIndex((one) => one.type === value.type && one.value === value.value) === at);
  const isFlag = parameter.type === "bool" && values.length !== 1;
  const control = values.length && !isFlag ? listControl(id, whole, values)
    : parameter.type === "bool" ? switchControl(id, whole)
    : path.endsWith("color") ? colourControl(id, whole)
    : parameter.type === "int" || parameter.type === "double" ? numberControl(id, whole, parameter.type, own?.class === "range" ? own : judgesAt(whole).find((one) => one.class === "range"), name)
    : textControl(id, whole, parameter.type);
  const fault = make("div", {class: "fault", id: `${id}-fault`, hidden: true});
  const row = make("div", {class: "control"}, make("label", {for: id, title: whole}, name), make("span", {class: "field"}, control.input, ...(control.more ?? [])), fault);
  controls.set(whole, {...control, fault, name});
  return row;
}
/// The parameters in the order of the defaults, then the others.
function pathsOf(helper, parameters) {
  const isValue = (path) => parameters[path] && parameters[path].type !== "node" && lastTag(path) !== "container" && lastTag(path) !== "codec_id" && lastTag(path) !== "type";
  return [...new Set([...leaves(helper?.defaults ?? {}).map(([path]) => path), ...Object.keys(parameters)])].filter(isValue);
}
function drawSection(kind) {
  const set = $(`try-${kind}`);
  for (const path of [...controls.keys()]) if (path.startsWith(`${kind}/`)) controls.delete(path);
  const helper = theJudge().helperOf(kind, idOf(kind));
  const chooser = set.querySelector(".chooser");
  if (chooser.type === "checkbox") chooser.checked = Boolean(valueAt(kind));
  else chooser.value = idOf(kind);
  set.querySelector(".note").replaceChildren(...noteOf(kind, helper));
  const rows = valueAt(kind) ? pathsOf(helper, theJudge().parametersOf(kind, idOf(kind))).map((path) => makeControl(kind, path, theJudge().parametersOf(kind, idOf(kind))[path])) : [];
  set.querySelector(".controls").replaceChildren(...rows);
}
/// What is to be said of what was chosen: what its encoder does, or why it does not go.
function noteOf(kind, helper) {
  if (kind === "format" && helper) return [linkTo("formats", helper.id, "its rules")];
  if (!helper || !idTags[kind]) return [];
  const stream = kind.split("_")[0];
  const format = formats.get(idOf("format"));
  const fault = format && hasEncoder(stream, helper.id) && faultOf(format, stream, helper.id);
  return [...(fault ? [make("strong", {class: "warn"}, fault), ". "] : []), factsOf(helper), ". ", linkTo(codecLists[stream], helper.id, "Its rules")];
}
/// The codecs that the container has, then the others.
function codecOptions(kind) {
  const stream = kind.split("_")[0];
  const carried = formats.get(idOf("format"))?.[stream]?.codecs ?? [];
  const option = ({id, name, encoder}) => make("option", {value: id}, `${name}${encoder ? "" : " (nothing here encodes it)"}`);
  const all = [...book[codecLists[stream]]].sort((a, b) => a.name.localeCompare(b.name));
  const [within, beyond] = [true, false].map((isWithin) => all.filter((codec) => carried.includes(codec.id) === isWithin).map(option));
  return [make("option", {value: ""}, "none"), ...(kind === "audio_codec" ? [make("option", {value: "auto"}, "automatic")] : []),
    ...(within.length ? [make("optgroup", {label: "The container has"}, ...within)] : []), make("optgroup", {label: "It does not have"}, ...beyond)];
}
function drawChoosers() {
  for (const kind of ["video_codec", "audio_codec"]) $(`try-${kind}`).querySelector(".chooser").replaceChildren(...codecOptions(kind));
}
function makeSections() {
  for (const kind of trySections) {
    const isFilter = !idTags[kind];
    const id = `try-${kind}-chooser`;
    const chooser = isFilter ? make("input", {type: "checkbox", role: "switch", id, class: "chooser"}) : make("select", {id, class: "chooser"});
    if (kind === "format") chooser.append(...[...book.formats].sort((a, b) => a.name.localeCompare(b.name)).map((format) => make("option", {value: format.id}, formatName(format))));
    chooser.addEventListener("change", () => {
      startSection(kind, isFilter ? (chooser.checked ? kind : "") : chooser.value);
      drawDialog();
    });
    $("trySections").append(make("fieldset", {id: `try-${kind}`}, make("legend", {}, make("label", {for: id}, parameterName(kind)), " ", chooser),
      make("p", {class: "note soft"}), make("div", {class: "controls"})));
  }
}
function drawDialog() {
  if (!$("trySections").firstChild) makeSections();
  drawChoosers();
  for (const kind of trySections) drawSection(kind);
  refresh();
}

// --------------------------------------------------------------- verdict
function faultNodes(finding) {
  const {fixed, isLegal, isNode, textOf} = theJudge();
  const better = finding.allowed && finding.value && fixed(finding.allowed, finding.value);
  const isFine = better && !isNode(better) && textOf(better) !== "unknown" && judgesAt(finding.path).every((allowed) => isLegal(allowed, better));
  if (!isFine) return [finding.message];
  const press = make("button", {type: "button"}, `Take ${valueName(finding.path, textOf(better))}`);
  press.addEventListener("click", () => { setValue(finding.path, better); refresh(); controls.get(finding.path)?.input.focus(); });
  return [`${finding.message} `, press];
}
/// Shows what the preset has and what is wrong with it, without making the controls anew.
function refresh() {
  const found = theJudge().judge(preset);
  const broken = found.filter((one) => one.problem !== "missing");
  const places = new Map();
  // A size is wrong as a whole.
  for (const one of broken) {
    const place = controls.has(one.path) ? one.path : `${one.path}/frame_size_mode`;
    if (controls.has(place)) places.set(place, [...(places.get(place) ?? []), one]);
  }
  for (const [path, {input, fault, show}] of controls) {
    show();
    const here = places.get(path) ?? [];
    fault.hidden = here.length === 0;
    fault.replaceChildren(...here.map((one) => make("p", {}, ...faultNodes(one))));
    input.toggleAttribute("aria-invalid", here.length > 0);
    if (here.length) { input.setAttribute("aria-invalid", "true"); input.setAttribute("aria-describedby", fault.id); } else input.removeAttribute("aria-describedby");
  }
  const elsewhere = broken.filter((one) => ![...places.values()].flat().includes(one));
  const open = found.filter((one) => one.problem === "missing");
  $("verdict").textContent = broken.length ? `${broken.length === 1 ? "One rule is" : `${broken.length} rules are`} broken.` : "Every rule is kept.";
  $("verdict").className = broken.length ? "warn" : "";
  const atControls = [...places.keys()].map((path) => {
    const press = make("button", {type: "button", class: "link"}, controls.get(path).name);
    press.addEventListener("click", () => controls.get(path).input.focus());
    return make("li", {}, press);
  });
  $("tryFaults").replaceChildren(...elsewhere.map((one) => make("li", {}, ...faultNodes(one))), ...atControls);
  $("tryMend").hidden = broken.length === 0;
  $("tryOpen").hidden = open.length === 0;
  $("tryOpenCount").textContent = `${open.length === 1 ? "One value is" : `${open.length} values are`} left to the source`;
  $("tryOpenList").replaceChildren(...open.map((one) => make("li", {}, ...parameterNodes(one.path), " must be ", words(one.allowed, one.path))));
  const format = formats.get(idOf("format"));
  $("tryCommand").textContent = `norvex-export INPUT OUTPUT${format?.extensions.length ? `.${format.extensions[0]}` : ""} --preset preset.json`;
  $("tryDocument").textContent = theJudge().writePreset(preset);
  if (location.hash.startsWith("#try?")) history.replaceState(history.state, "", `#try?${choicesOf()}`);
}

// ---------------------------------------------------- the address, and files
const flat = (tree, path = "") => tree.children.flatMap((value) => {
  const below = path ? `${path}/${value.name}` : value.name;
  return theJudge().isNode(value) ? flat(value, below) : [[below, theJudge().textOf(value)]];
});
/// The preset as what differs from the defaults, for an address.
function choicesOf() {
  const {helperOf, defaultsOf, isNode} = theJudge();
  const choices = [];
  for (const section of preset.children.filter(isNode)) {
    const kind = section.name;
    choices.push([kind, idTags[kind] ? idOf(kind) : "on"]);
    const helper = helperOf(kind, idOf(kind));
    const standard = new Map(helper ? flat(defaultsOf(helper)).filter(([path]) => !path.startsWith("streams/")) : []);
    for (const [path, text] of flat(section)) {
      if (path !== idTags[kind] && standard.get(path) !== text) choices.push([`${kind}/${path}`, text]);
      standard.delete(path);
    }
    for (const path of standard.keys()) choices.push([`-${kind}/${path}`, ""]);
  }
  return choices.map(([path, text]) => `${path}=${encodeURIComponent(text)}`).join("&");
}
function openDialog(choices) {
  const {node, leaf, interpret, parametersOf} = theJudge();
  $("tryPanel").open = true;
  preset = node("preset");
  for (const choice of choices.split("&").filter(Boolean)) {
    const [path, text] = choice.split("=").map(decodeURIComponent);
    const [kind, ...below] = path.replace(/^-/, "").split("/");
    if (!trySections.includes(kind)) continue;
    if (below.length === 0) { startSection(kind, text); continue; }
    const parameter = parametersOf(kind, idOf(kind))[below.join("/")];
    if (!parameter || !valueAt(kind)) continue;
    const value = leaf("", "text", text);
    if (parameter.type !== "text") interpret(value, parameter, ownConstraint(kind, below.join("/")));
    setValue(path.replace(/^-/, ""), path.startsWith("-") ? null : value);
  }
  drawDialog();
}
async function copyText(id) {
  const range = document.createRange();
  range.selectNodeContents($(id));
  getSelection().removeAllRanges();
  getSelection().addRange(range);
  // The page may lie in a file, where some browsers have no clipboard for it: the text is marked, to be copied by hand.
  try { await navigator.clipboard.writeText($(id).textContent); $("tryTold").textContent = "Copied."; } catch { $("tryTold").textContent = "Marked; copy it with the keyboard."; }
}
for (const id of ["tryCommand", "tryDocument"]) $(`${id}Copy`).addEventListener("click", () => copyText(id));
$("trySave").addEventListener("click", () => {
  const link = make("a", {download: "preset.json", href: URL.createObjectURL(new Blob([$("tryDocument").textContent], {type: "application/json"}))});
  link.click();
  URL.revokeObjectURL(link.href);
});
$("tryMend").addEventListener("click", () => { preset = theJudge().mend(preset).preset; drawDialog(); $("verdict").focus(); });
$("tryFile").addEventListener("change", async () => {
  const [file] = $("tryFile").files;
  if (!file) return;
  try {
    preset = theJudge().readPreset(await file.text());
    drawDialog();
    $("tryTold").textContent = `${file.name} is read.`;
  } catch (failure) {
    $("tryTold").textContent = `${file.name} is not read: ${failure.message}.`;
  }
  $("tryFile").value = "";
});
$("tryLink").addEventListener("click", (event) => {
  event.preventDefault();
  history.replaceState(history.state, "", `#try?${choicesOf()}`);
  $("tryTold").textContent = "The address holds the choices now; send it.";
});
$("try").addEventListener("toggle", () => {
  if (!$("tryPanel").open || preset) return;
  openDialog("format=mp4&video_codec=h264&audio_codec=aac");
}, true);
if (history.state?.search) { $("search").value = history.state.search; search(); }
drawGrid();
openTarget();
