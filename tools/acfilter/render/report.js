"use strict";
// Without this script the whole table is shown, for it stands in a noscript element. With it, the element is one text, of
// which a page of rows at a time becomes part of the document: a browser cannot lay out tens of thousands of rows quickly.
(() => {
  const rowsOfAPage = 100;
  const source = document.querySelector("#table noscript");
  const text = source.textContent;
  const begin = text.indexOf("<tbody>\n") + "<tbody>\n".length;
  const lines = text.slice(begin, text.indexOf("</tbody>", begin)).split("\n").filter((line) => line !== "");
  const area = source.parentElement;
  area.innerHTML = text.slice(0, begin) + "</tbody></table>";
  const table = document.getElementById("access");
  const body = table.tBodies[0];

  const characters = { "&lt;": "<", "&gt;": ">", "&quot;": '"', "&amp;": "&" };
  const plain = (html) => html.replace(/<[^>]*>/g, "").replace(/&(?:lt|gt|quot|amp);/g, (name) => characters[name]);
  const cells = (line) => line.split(/<\/t[hd]>/);
  const outcomes = lines.map((line) => plain(cells(line)[2]));
  let texts; // of the rows, in lower case; made by the first search
  let order = lines.map((line, index) => index);
  let matching = order;
  let outcome = ""; // any
  let page = 0;

  const made = (parent, name, properties) => parent.appendChild(Object.assign(document.createElement(name), properties));
  const tools = document.createElement("div");
  tools.className = "tools";
  const label = made(tools, "label", { textContent: "Search " });
  const search = made(label, "input", { type: "search" });
  const choice = made(tools, "div", { className: "choice", role: "group", ariaLabel: "Outcome" });
  const shown = made(tools, "output", {});
  const pages = made(tools, "nav", { ariaLabel: "Pages of the table" });
  const turn = (name, to) => {
    const button = made(pages, "button", { type: "button", textContent: name });
    button.addEventListener("click", () => show(to()));
    return button;
  };
  const lastPage = () => Math.max(0, Math.ceil(matching.length / rowsOfAPage) - 1);
  const turns = [turn("First", () => 0), turn("Previous", () => page - 1)];
  const place = made(pages, "span", {});
  turns.push(turn("Next", () => page + 1), turn("Last", lastPage));
  area.before(tools);

  const write = (indexes) => {
    body.innerHTML = indexes.map((index) => lines[index]).join("\n");
  };

  const show = (number) => {
    page = Math.min(Math.max(0, number), lastPage());
    write(matching.slice(page * rowsOfAPage, (page + 1) * rowsOfAPage));
    area.scrollTop = 0;
    place.textContent = `Page ${page + 1} of ${lastPage() + 1}`;
    turns.forEach((button, index) => {
      button.disabled = index < 2 ? page === 0 : page === lastPage();
    });
    pages.hidden = lastPage() === 0;
  };

  const find = () => {
    const wanted = search.value.toLowerCase();
    texts ||= wanted === "" ? undefined : lines.map((line) => plain(line.replace(/<\/t[hd]>/g, "\n")).toLowerCase());
    matching = order.filter((index) => (outcome === "" || outcomes[index] === outcome) &&
      (wanted === "" || texts[index].includes(wanted)));
    const conditions = (outcome === "" ? "" : `, ${outcome}`) + (wanted === "" ? "" : `, those with: ${search.value}`);
    shown.textContent = conditions === "" ? `${lines.length} users` :
      `${matching.length} of ${lines.length} users${conditions}`;
    show(0);
  };
  search.addEventListener("input", find);

  const choose = (name, count) => {
    const button = made(choice, "button", { type: "button", textContent: `${name === "" ? "all" : name} (${count})` });
    button.className = name;
    button.setAttribute("aria-pressed", name === "");
    button.addEventListener("click", () => {
      outcome = name;
      Array.from(choice.children).forEach((other) => other.setAttribute("aria-pressed", other === button));
      find();
    });
  };
  choose("", lines.length);
  for (const name of ["unrestricted", "restricted", "hide-all", "default"]) {
    choose(name, outcomes.filter((each) => each === name).length);
  }

  const collator = new Intl.Collator(undefined, { numeric: true });
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
      const keys = lines.map((line) => plain(cells(line)[column]));
      order = order.slice().sort((a, b) => direction * collator.compare(keys[a], keys[b]) || a - b);
      find();
    });
  });

  // A printed report holds every row that the search and the outcome leave.
  window.addEventListener("beforeprint", () => write(matching));
  window.addEventListener("afterprint", () => show(page));
  find();
})();
