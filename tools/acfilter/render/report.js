"use strict";
// Without this script everything can be read; with it, sorted and searched.
(() => {
  const table = document.getElementById("access");
  const body = table.tBodies[0];
  const rows = Array.from(body.rows);
  const order = new Intl.Collator(undefined, { numeric: true });

  const tools = document.createElement("div");
  const label = document.createElement("label");
  const search = document.createElement("input");
  const shown = document.createElement("output");
  tools.className = "tools";
  search.type = "search";
  label.append("Search ", search);
  tools.append(label, shown);
  document.getElementById("table").before(tools);

  let texts;
  search.addEventListener("input", () => {
    texts ||= rows.map((row) => row.textContent.toLowerCase());
    const wanted = search.value.toLowerCase();
    let count = 0;
    rows.forEach((row, index) => {
      row.hidden = !texts[index].includes(wanted);
      count += row.hidden ? 0 : 1;
    });
    shown.textContent = wanted === "" ? "" : `${count} of ${rows.length} users shown, those with: ${search.value}`;
  });

  const heads = Array.from(table.tHead.rows[0].cells);
  heads.forEach((head, column) => {
    const button = document.createElement("button");
    button.type = "button";
    button.append(...head.childNodes);
    head.append(button);
    button.addEventListener("click", () => {
      const direction = head.getAttribute("aria-sort") === "ascending" ? -1 : 1;
      heads.forEach((other) => other.removeAttribute("aria-sort"));
      head.setAttribute("aria-sort", direction === 1 ? "ascending" : "descending");
      const keys = new Map(rows.map((row) => [row, row.cells[column].textContent]));
      body.append(...rows.slice().sort((a, b) => direction * order.compare(keys.get(a), keys.get(b))));
    });
  });
})();
