// What the page does beyond showing: the filter, sorting, all details at once, hiding free sockets, and the way
// from a row or a socket to what is plugged in. Without it everything is there to be read. It only reads, hides,
// orders and marks what the document holds.
"use strict";
(() => {
  const words = document.getElementById("words");
  if (words === null) return;
  const all = (selector, root = document) => Array.from(root.querySelectorAll(selector));
  const main = document.querySelector("main");
  const count = document.getElementById("count");
  const byNumber = new Intl.Collator("en", { numeric: true });

  // What the filter finds: everything that is plugged in, with its row in the table, and every empty socket.
  const entries = new Map();
  const entryOf = (id) => {
    if (!entries.has(id)) entries.set(id, { parts: [], item: null, row: null, socket: null, buses: [] });
    return entries.get(id);
  };
  const addItem = (item) => {
    const entry = entryOf(item.id);
    entry.item = item;
    entry.buses = item.dataset.bus.split(" ");
    entry.parts.push(...all(":scope > details [data-find]", item));
  };
  const addSocket = (socket) => {
    const entry = entryOf(socket.id);
    entry.socket = socket;
    entry.buses = socket.dataset.bus.split(" ");
    entry.parts.push(socket.querySelector(".unseen"));
  };
  const addRow = (row) => {
    const entry = entryOf(row.querySelector("a").hash.slice(1));
    entry.row = row;
    entry.parts.push(...all("[data-find]", row));
  };
  all(".item").forEach(addItem);
  all(".socket[id]").forEach(addSocket);
  all("#devices tbody tr").forEach(addRow);
  for (const entry of entries.values()) {
    entry.text = entry.parts.map((part) => part.textContent).join("\n").toLowerCase();
  }

  // "bus 2" is looked for in what is on that bus, other words in the texts.
  const parse = (text) => {
    const buses = [];
    const rest = text.toLowerCase().replace(/\bbus\s+0*(\d+)(?=\s|$)/g, (_, bus) => {
      buses.push(bus);
      return " ";
    });
    return { buses, words: rest.split(/\s+/).filter((word) => word !== "") };
  };

  const matches = (entry, wanted) =>
    wanted.words.every((word) => entry.text.includes(word)) &&
    wanted.buses.every((bus) => entry.buses.includes(bus));

  const unmark = (root) => {
    for (const part of new Set(all("mark", root).map((mark) => mark.parentElement))) {
      part.textContent = part.textContent;
    }
  };

  const mark = (entry, wanted) => {
    if (wanted.words.length === 0) return;
    const escaped = wanted.words.map((word) => word.replace(/[.*+?^${}()|[\]\\]/g, "\\$&"));
    const pattern = new RegExp("(" + escaped.join("|") + ")", "gi");
    for (const part of entry.parts) {
      const pieces = part.textContent.split(pattern);
      if (pieces.length === 1) continue;
      part.replaceChildren(...pieces.map((piece, index) => {
        if (index % 2 === 0) return piece;
        const marked = document.createElement("mark");
        marked.textContent = piece;
        return marked;
      }));
    }
  };

  // Shows an item and the way to it from the root.
  const show = (item) => {
    for (let up = item; up !== null; up = up.parentElement.closest(".item")) up.hidden = false;
  };

  const showHit = (entry) => {
    for (const element of [entry.item, entry.row, entry.socket]) {
      if (element === null) continue;
      element.classList.add("hit");
      element.hidden = false;
      show(element.closest(".item"));
    }
  };

  const dimSockets = (isOn) => {
    for (const socket of all(".socket")) {
      const link = socket.querySelector("a");
      const item = link === null ? null : document.getElementById(link.hash.slice(1));
      const isHit = item === null ? socket.classList.contains("hit") : !item.hidden;
      socket.classList.toggle("dim", isOn && !isHit);
    }
  };

  // A heading or column with nothing below it goes too; a fold with something in it opens for as long.
  const tidy = (isOn) => {
    for (const part of all(".column, .empty, .unlinked, #devices, #controllers")) {
      part.hidden = isOn && part.querySelector(".hit") === null;
    }
    for (const fold of all(".empty")) {
      if (isOn && fold.dataset.wasOpen === undefined) fold.dataset.wasOpen = String(fold.open);
      if (isOn) fold.open = true;
      if (!isOn && fold.dataset.wasOpen !== undefined) {
        fold.open = fold.dataset.wasOpen === "true";
        delete fold.dataset.wasOpen;
      }
    }
  };

  const filter = () => {
    const wanted = parse(words.value);
    const isOn = wanted.words.length + wanted.buses.length > 0;
    // A page that becomes shorter than the window is scrolled to would jump.
    main.style.minHeight = isOn ? `${main.offsetHeight}px` : "";
    unmark(main);
    for (const element of all(".item, #devices tbody tr")) element.hidden = isOn;
    for (const element of all(".hit")) element.classList.remove("hit");
    const hits = Array.from(entries.values()).filter((entry) => isOn && matches(entry, wanted));
    for (const entry of hits) {
      showHit(entry);
      mark(entry, wanted);
    }
    document.body.classList.toggle("filtered", isOn);
    dimSockets(isOn);
    tidy(isOn);
    const number = hits.length === 0 ? "Nothing matches" : `${hits.length} of ${entries.size} match`;
    count.textContent = isOn ? number : "";
  };

  // Sorting by a column: what has no value comes last, equal values stay in the order of the document.
  const speedOf = (text) => parseFloat(text) * (text.endsWith("Gbit/s") ? 1000 : 1);
  const compare = (a, b, column) => {
    if (a === "" || b === "") return 0;
    return column === "speed" ? speedOf(a) - speedOf(b) : byNumber.compare(a, b);
  };
  const rows = all("#devices tbody tr");
  const sort = (heading) => {
    const isDown = heading.getAttribute("aria-sort") === "ascending";
    for (const other of all("#devices thead th")) other.removeAttribute("aria-sort");
    heading.setAttribute("aria-sort", isDown ? "descending" : "ascending");
    const column = heading.classList[0];
    const textOf = (row) => row.querySelector(`.${column}`).textContent.trim();
    const keyed = rows.map((row) => ({ row, text: textOf(row) }));
    keyed.sort((a, b) =>
      (a.text === "") - (b.text === "") || compare(a.text, b.text, column) * (isDown ? -1 : 1));
    document.querySelector("#devices tbody").append(...keyed.map(({ row }) => row));
  };
  for (const heading of all("#devices thead th")) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = heading.textContent;
    button.addEventListener("click", () => sort(heading));
    heading.replaceChildren(button);
  }

  const unfold = document.getElementById("unfold");
  let areDetailsOpen = false;
  const setAllDetails = (isOpen) => {
    areDetailsOpen = isOpen;
    unfold.textContent = isOpen ? "Hide details" : "All details";
    for (const details of all(".item > details")) details.open = isOpen;
  };

  const hideFree = document.getElementById("hide-free");
  const setHideFree = (isOn) => {
    hideFree.setAttribute("aria-pressed", String(isOn));
    document.body.classList.toggle("without-free", isOn);
  };
  hideFree.hidden = document.querySelector(".socket.free") === null;

  // A row or a socket leads to its item even where the filter, a fold or the switch has hidden that.
  const follow = (event) => {
    const link = event.target.closest(".socket a, #devices a");
    if (link === null) return;
    const target = document.getElementById(link.hash.slice(1));
    if (target.closest("[hidden]") !== null) {
      words.value = "";
      filter();
    }
    for (let up = target; up !== null; up = up.parentElement.closest(".empty")) {
      if (up.matches(".empty")) up.open = true;
    }
    if (target.matches(".socket")) {
      setHideFree(false);
      return;
    }
    const details = target.querySelector("details");
    details.open = true;
    details.querySelector("summary").focus();
  };

  words.addEventListener("input", filter);
  unfold.addEventListener("click", () => setAllDetails(!areDetailsOpen));
  hideFree.addEventListener("click", () => setHideFree(hideFree.getAttribute("aria-pressed") !== "true"));
  document.addEventListener("click", follow);
  document.body.classList.add("scripted");
  document.getElementById("filter").hidden = false;
  document.getElementById("switches").hidden = false;
  // A browser may bring back what was typed before the page was loaded again.
  filter();
})();
