
"use strict";
// Sort and filter over all rows of a table, whatever pages they stand on. Without it every row can be read, too.
for (const section of document.querySelectorAll("section.table")) {
  const pages = [...section.querySelectorAll("details.page")];
  if (pages.length === 0) continue;
  const bodies = pages.map((page) => page.querySelector("tbody"));
  const size = bodies[0].rows.length;
  const headings = [...bodies[0].parentNode.tHead.rows[0].cells];
  let rows = null;
  let chosen = { column: 0, down: false };

  const make = (name, properties, ...children) => {
    const element = Object.assign(document.createElement(name), properties);
    element.append(...children);
    return element;
  };
  const number = (count) => count.toLocaleString("en");
  const filter = make("input", { type: "search" });
  const column = make("select", {}, ...headings.map((heading, i) => make("option", { value: i, textContent: heading.textContent }))
    .filter((option, i) => getComputedStyle(headings[i]).display !== "none"));
  const direction = make("select", {}, make("option", { value: "up", textContent: "ascending" }), make("option", { value: "down", textContent: "descending" }));
  const found = make("output", {});
  const open = make("button", { type: "button", textContent: "Open all pages" });
  const tools = make("div", { className: "tools" }, make("label", {}, "Filter ", filter), make("label", {}, "Sort by ", column), direction, found);
  if (pages.length > 1) tools.append(open);
  pages[0].before(tools);

  const all = () => (rows ??= bodies.flatMap((body) => [...body.rows]));
  const key_of = (row) => {
    const text = row.cells[chosen.column].textContent.trim();
    const value = text === "" ? NaN : Number(text);
    return { row, text: text.toLowerCase(), value };
  };
  const compare = (a, b) => {
    if (a.text === "" || b.text === "") return (a.text === "") - (b.text === "");
    const order = !isNaN(a.value) && !isNaN(b.value) ? a.value - b.value : a.text < b.text ? -1 : a.text > b.text ? 1 : 0;
    return chosen.down ? -order : order;
  };
  const show = () => {
    const words = filter.value.trim().toLowerCase();
    const keys = all().filter((row) => words === "" || row.textContent.toLowerCase().includes(words)).map(key_of);
    const list = keys.sort(compare).map((key) => key.row);
    pages.forEach((page, i) => {
      const part = list.slice(i * size, (i + 1) * size);
      bodies[i].replaceChildren(...part);
      page.hidden = part.length === 0 && i > 0;
      const range = number(i * size + (part.length > 0)) + "–" + number(i * size + part.length);
      page.firstElementChild.textContent = "Rows " + range + " of " + number(list.length);
      bodies[i].parentNode.caption.textContent = page.firstElementChild.textContent;
      [...bodies[i].parentNode.tHead.rows[0].cells].forEach((heading, c) => {
        if (c === chosen.column) heading.setAttribute("aria-sort", chosen.down ? "descending" : "ascending");
        else heading.removeAttribute("aria-sort");
      });
    });
    found.textContent = words === "" ? "" : number(list.length) + " of " + number(all().length) + " rows";
  };
  let waiting = 0;
  filter.addEventListener("input", () => {
    clearTimeout(waiting);
    waiting = setTimeout(show, 250);
  });
  const sort = (index, down) => {
    chosen = { column: index, down };
    column.value = index;
    direction.value = down ? "down" : "up";
    show();
  };
  column.addEventListener("change", () => sort(Number(column.value), chosen.down));
  direction.addEventListener("change", () => sort(chosen.column, direction.value === "down"));
  open.addEventListener("click", () => pages.forEach((page) => (page.open = true)));
  section.addEventListener("click", (event) => {
    const heading = event.target.closest("table.rows thead th");
    if (heading) sort(heading.cellIndex, heading.cellIndex === chosen.column && !chosen.down);
  });
}
