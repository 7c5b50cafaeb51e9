// The search: functions whose name, description or text has all words that were typed, the best first.
(function () {
  "use strict";
  const form = document.querySelector(".search");
  const input = document.getElementById("search");
  const list = document.getElementById("found");
  const popup = form.querySelector(".popup");
  const told = popup.querySelector("[role=status]");
  const most = 10;
  let active = -1;

  // How well a function meets one word; 0: not at all.
  function worth(entry, word) {
    const name = entry.name.toLowerCase();
    const plain = name.replace(/\./g, "");
    if (name === word || plain === word) return 100;
    if (name.startsWith(word) || plain.startsWith(word)) return 60;
    if (name.includes(word) || plain.includes(word)) return 40;
    const description = entry.description.toLowerCase();
    if (description.startsWith(word) || description.includes(" " + word)) return 20;
    if (description.includes(word) || entry.family.toLowerCase().includes(word)) return 10;
    if (entry.text.includes(" " + word)) return 4;
    return entry.text.includes(word) ? 2 : 0;
  }

  function matches(typed) {
    const words = typed.toLowerCase().split(/\s+/).filter(Boolean);
    if (!words.length) return [];
    return functions
      .map(function (entry, place) {
        const each = words.map((word) => worth(entry, word));
        return { entry: entry, place: place, worth: Math.min(...each) && each.reduce((sum, one) => sum + one, 0) };
      })
      .filter((one) => one.worth)
      .sort((one, other) => other.worth - one.worth || one.place - other.place)
      .map((one) => one.entry);
  }

  function option(entry, place) {
    const item = document.createElement("li");
    item.id = "found-" + place;
    item.setAttribute("role", "option");
    const link = document.createElement("a");
    link.href = entry.file;
    link.tabIndex = -1;
    for (const [kind, text] of [["name", entry.name], ["of", entry.family], ["said", entry.description]]) {
      const part = document.createElement("span");
      part.className = kind;
      part.textContent = text;
      link.append(part, " ");
    }
    item.append(link);
    return item;
  }

  function choose(place) {
    active = place;
    Array.from(list.children).forEach(function (item, at) {
      item.setAttribute("aria-selected", String(at === active));
      if (at === active) item.scrollIntoView({ block: "nearest" });
    });
    if (active >= 0) input.setAttribute("aria-activedescendant", "found-" + active);
    else input.removeAttribute("aria-activedescendant");
  }

  function show() {
    const all = matches(input.value);
    list.replaceChildren(...all.slice(0, most).map(option));
    const isTyped = input.value.trim() !== "";
    popup.classList.toggle("open", isTyped);
    input.setAttribute("aria-expanded", String(all.length > 0));
    told.textContent = !isTyped ? "" : !all.length ? "No function found. Try another word for it." :
      all.length > most ? "The first " + most + " of " + all.length + " functions" :
        all.length === 1 ? "1 function" : all.length + " functions";
    choose(all.length ? 0 : -1);
  }

  function close() {
    list.replaceChildren();
    told.textContent = "";
    popup.classList.remove("open");
    input.setAttribute("aria-expanded", "false");
    choose(-1);
  }

  function open() {
    const link = active < 0 ? null : list.children[active].querySelector("a");
    if (link) location.href = link.href;
  }

  form.hidden = false;
  input.addEventListener("input", show);
  input.addEventListener("focus", function () {
    if (input.value.trim()) show();
  });
  input.addEventListener("keydown", function (event) {
    const count = list.children.length;
    if (event.key === "Escape") close();
    else if (event.key === "ArrowDown" && count) choose((active + 1) % count);
    else if (event.key === "ArrowUp" && count) choose((active + count - 1) % count);
    else return;
    event.preventDefault();
  });
  form.addEventListener("submit", function (event) {
    event.preventDefault();
    open();
  });
  form.addEventListener("focusout", function (event) {
    if (!form.contains(event.relatedTarget)) close();
  });
  // A press on an option must not take the focus away before it is a click.
  list.addEventListener("mousedown", (event) => event.preventDefault());
  document.addEventListener("keydown", function (event) {
    if (event.key !== "/" || event.ctrlKey || event.metaKey || document.activeElement === input) return;
    event.preventDefault();
    input.focus();
  });
})();
