// Appended to a report without its Content-Security-Policy. Prints what the page shows, and that it sorts and searches, one
// fact a line.
(() => {
  const facts = [];
  const tell = (name, value) => facts.push(`${name}: ${value}`);
  const table = document.getElementById("access");
  const rows = () => Array.from(table.tBodies[0].rows);
  const users = () => rows().map((row) => row.cells[0].textContent).join(" ; ");
  const head = (name) => Array.from(table.tHead.rows[0].cells).find((cell) => cell.textContent === name);
  const sortBy = (name) => head(name).querySelector("button").click();

  tell("title", document.title);
  tell("heading", document.querySelector("h1").textContent);
  tell("foreign elements", document.querySelectorAll("img, a, iframe, link, object, form, [style], [href], [src]").length);
  tell("elements that would run something", document.querySelectorAll("script").length - 2 +
    Array.from(document.querySelectorAll("*")).filter((each) => each.getAttributeNames().some((n) => n.startsWith("on"))).length);
  tell("loaded", performance.getEntriesByType("resource").length);
  tell("turned", /[\u200e\u200f\u202a-\u202e\u2066-\u2069]/.test(document.body.textContent));
  tell("names kept to themselves", rows().every((row) => row.cells[0].firstChild.tagName === "BDI"));
  tell("users", users());
  tell("groups", rows().map((row) => row.cells[1].textContent).filter((text) => /\W/.test(text)).join(" ; "));
  tell("values", rows().map((row) => row.cells[3].textContent).filter((text) => text.includes("<")).join(" ; "));
  tell("filter", rows().map((row) => row.cells[row.cells.length - 1].textContent).filter((text) => text.includes("<")).join(" ; "));
  tell("columns", Array.from(table.tHead.rows[0].cells).map((cell) => `${cell.scope} ${cell.textContent}`).join(", "));
  tell("rows with a header", rows().filter((row) => row.cells[0].scope === "row").length);
  tell("captions", Array.from(document.querySelectorAll("caption")).map((caption) => caption.textContent).join(", "));
  tell("counts", Array.from(document.querySelectorAll("svg")).map((bar) => {
    const cells = bar.closest("tr").cells;
    return `${cells[0].textContent} ${cells[1].textContent} ${cells[2].textContent} ${Math.round(bar.querySelector("rect").getBoundingClientRect().width)}px`;
  }).join(", "));

  sortBy("Outcome");
  tell("by outcome", Array.from(new Set(rows().map((row) => row.cells[2].textContent))).join(", "));
  tell("said", head("Outcome").getAttribute("aria-sort"));
  sortBy("kind");
  sortBy("kind");
  tell("by kind, backwards", Array.from(new Set(rows().map((row) => row.cells[5].textContent.split(":")[0]))).join(", "));
  tell("said", `${head("kind").getAttribute("aria-sort")}, ${head("Outcome").getAttribute("aria-sort")}`);
  sortBy("User");
  const search = document.querySelector("input");
  const find = (text) => {
    search.value = text;
    search.dispatchEvent(new Event("input"));
    return `${users()} (${document.querySelector("output").textContent})`;
  };
  tell("search", find("FINANCE"));
  find("");
  const outcomes = Array.from(document.querySelectorAll("[role=group] button"));
  const choose = (name) => outcomes.find((button) => button.textContent.startsWith(name)).click();
  choose("unrestricted");
  tell("unrestricted", `${users()} (${document.querySelector("output").textContent})`);
  choose("restricted");
  tell("restricted", `${rows().length}, pressed: ${outcomes.filter((each) => each.ariaPressed === "true").map((each) => each.textContent)}`);
  tell("searched among them", find("baltic"));
  find("");
  choose("all");
  tell("all again", rows().length);
  tell("reached by keyboard", Array.from(document.querySelectorAll("input, button, [tabindex]")).filter((each) => {
    each.focus();
    return document.activeElement === each || each.disabled || each.closest("[hidden]");
  }).length - document.querySelectorAll("input, button, [tabindex]").length);

  const area = document.getElementById("table");
  area.style.maxHeight = "200px";
  area.scrollTop = area.scrollLeft = 150;
  const corner = area.getBoundingClientRect();
  const place = (cell) => cell.getBoundingClientRect();
  tell("in sight when scrolled", `head ${Math.round(place(table.tHead.rows[0].cells[3]).top - corner.top)},` +
    ` first column ${Math.round(place(rows()[9].cells[0]).left - corner.left)}`);
  tell("wider than the window", document.documentElement.scrollWidth > window.innerWidth);
  tell("summary", getComputedStyle(document.querySelector("#outcomes tr")).display);
  tell("page", getComputedStyle(document.body).backgroundColor);

  const result = document.createElement("pre");
  result.textContent = facts.join("\n");
  document.body.replaceChildren(result);
})();
