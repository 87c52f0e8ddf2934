// Building and updating the document. Texts become text nodes: nothing of a scenario or of a trace is
// ever read as HTML. What can be pressed says so in data attributes, and one listener a region acts.

const kDrawn = ["svg", "path"];

export const byId = (id) => document.getElementById(id);

// An element with attributes (false and null: left out; true: empty) and children (texts, elements,
// arrays of them; false, null and empty: left out).
export function el(tag, attributes = {}, ...children) {
  const node = kDrawn.includes(tag) ? document.createElementNS("http://www.w3.org/2000/svg", tag)
                               : document.createElement(tag);
  for (const [name, value] of Object.entries(attributes))
    if (value !== false && value != null) node.setAttribute(name, value === true ? "" : value);
  node.append(...children.flat(Infinity).filter(Boolean));
  return node;
}

export const div = (name, ...children) => el("div", { class: name }, ...children);
export const span = (name, ...children) => el("span", { class: name }, ...children);

function keepAttributes(now, wanted) {
  for (const { name } of [...now.attributes]) if (!wanted.hasAttribute(name)) now.removeAttribute(name);
  for (const { name, value } of [...wanted.attributes])
    if (now.getAttribute(name) !== value) now.setAttribute(name, value);
  if (now.tagName === "INPUT") now.checked = wanted.checked;
}

// Makes `host` hold exactly these nodes, changing as little as possible: what stays keeps its focus
// and its selection.
export function fill(host, ...nodes) {
  const wanted = nodes.flat(Infinity).filter(Boolean)
    .map((node) => (node instanceof Node ? node : new Text(node)));
  wanted.forEach((node, at) => {
    const now = host.childNodes[at];
    if (now === node) return;
    if (!now) host.append(node);
    else if (now.nodeName !== node.nodeName || now.dataset?.key !== node.dataset?.key) now.replaceWith(node);
    else if (now.nodeType === Node.TEXT_NODE) { if (now.data !== node.data) now.data = node.data; }
    else {
      const { value } = node;  // (of a choice, while it still has all of its own)
      fill(now, ...node.childNodes);
      keepAttributes(now, node);
      if (now.tagName === "SELECT" && now.value !== value) now.value = value;
    }
  });
  while (host.childNodes.length > wanted.length) host.lastChild.remove();
}

// Calls `act` with what the data attribute of the button says that is pressed inside of `host`.
export function onPress(host, attribute, act) {
  host.addEventListener("click", (event) => {
    const pressed = event.target.closest(`[data-${attribute}]`);
    if (pressed && !pressed.disabled) act(pressed.dataset[attribute]);
  });
}

// Says something to everyone, also to a screen reader, for a while.
let silence = 0;
export function say(text) {
  byId("said").textContent = text;
  clearTimeout(silence);
  silence = setTimeout(() => { byId("said").textContent = ""; }, 8000);
}
