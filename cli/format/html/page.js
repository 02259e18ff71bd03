// What the page does beyond showing: the filter, all details at once, and the way from a socket to what is
// plugged in. Without it everything is there to be read. It only reads and hides what the document holds.
"use strict";
(() => {
  const items = Array.from(document.querySelectorAll(".item"));
  const words = document.getElementById("words");
  if (words === null) return;
  const count = document.getElementById("count");
  const unfold = document.getElementById("unfold");

  const textOf = (item) =>
    Array.from(item.querySelectorAll(":scope > details [data-find]"), (part) => part.textContent)
      .join("\n")
      .toLowerCase();
  const entries = items
    .map((item) => ({ item, text: textOf(item) }))
    .filter((entry) => entry.text !== "");

  // Shows an item and the way to it from the root.
  const show = (item) => {
    for (let up = item; up !== null; up = up.parentElement.closest(".item")) up.hidden = false;
  };

  const dimSockets = () => {
    for (const socket of document.querySelectorAll(".socket")) {
      const link = socket.querySelector("a");
      const item = link === null ? null : document.getElementById(link.hash.slice(1));
      socket.classList.toggle("dim", item === null || item.hidden);
    }
  };

  const filter = () => {
    const wanted = words.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    const isOn = wanted.length > 0;
    const hits = entries.filter((entry) => isOn && wanted.every((word) => entry.text.includes(word)));
    for (const item of items) {
      item.hidden = isOn;
      item.classList.remove("hit");
    }
    for (const { item } of hits) {
      item.classList.add("hit");
      show(item);
    }
    document.body.classList.toggle("filtered", isOn);
    dimSockets();
    count.textContent = isOn ? `${hits.length} of ${entries.length} match` : "";
  };

  const setAllDetails = (isOpen) => {
    unfold.setAttribute("aria-pressed", String(isOpen));
    for (const details of document.querySelectorAll(".item > details")) details.open = isOpen;
  };

  // A socket leads to its device even where the filter has hidden that.
  const follow = (event) => {
    const link = event.target.closest(".socket a");
    if (link === null) return;
    const item = document.getElementById(link.hash.slice(1));
    if (item.hidden) {
      words.value = "";
      filter();
    }
    const details = item.querySelector("details");
    details.open = true;
    details.querySelector("summary").focus();
  };

  words.addEventListener("input", filter);
  unfold.addEventListener("click", () => setAllDetails(unfold.getAttribute("aria-pressed") !== "true"));
  document.addEventListener("click", follow);
  document.getElementById("filter").hidden = false;
  // A browser may bring back what was typed before the page was loaded again.
  filter();
})();
