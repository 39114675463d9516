"use strict";

// Tables: the heading of a column sorts by it, upward first. Cells without a number come last, and
// rows that are equal keep their order.
function valueOf(row, column, isNumber) {
    const text = row.cells[column].textContent.trim();
    return isNumber ? (text === "" ? NaN : Number(text)) : text;
}

function compare(a, b, isNumber) {
    if (!isNumber)
        return (a === "") - (b === "") || (a < b ? -1 : a > b ? 1 : 0);
    return Number.isNaN(a) - Number.isNaN(b) || (Number.isNaN(a) ? 0 : a - b);
}

function sortBy(table, heading) {
    const column = heading.cellIndex;
    const isNumber = heading.classList.contains("number");
    const up = heading.getAttribute("aria-sort") !== "ascending";
    const isEmpty = value => value === "" || Number.isNaN(value);
    const rows = Array.from(table.tBodies[0].rows, row => ({ row, value: valueOf(row, column, isNumber) }));
    rows.sort((a, b) => {
        const order = compare(a.value, b.value, isNumber);
        return up || isEmpty(a.value) || isEmpty(b.value) ? order : -order;
    });
    for (const other of table.tHead.rows[0].cells)
        other.setAttribute("aria-sort", "none");
    heading.setAttribute("aria-sort", up ? "ascending" : "descending");
    table.tBodies[0].append(...rows.map(entry => entry.row));
}

for (const table of document.querySelectorAll("table.sortable"))
    for (const heading of table.tHead.rows[0].cells)
        heading.querySelector("button").addEventListener("click", () => sortBy(table, heading));

// Maps: position and value of the cell under the pointer or under the mark that the keys move.
function numbersOf(text) {
    const bytes = Uint8Array.from(atob(text), letter => letter.charCodeAt(0));
    const view = new DataView(bytes.buffer);
    return Array.from({ length: bytes.length / 4 }, (_, i) => view.getFloat32(4 * i, true));
}

function cellAt(edges, place) {
    if (!(place >= edges[0] && place < edges[edges.length - 1]))
        return -1;
    let low = 0;
    let high = edges.length - 1;
    while (high - low > 1) {
        const middle = (low + high) >> 1;
        if (edges[middle] <= place)
            low = middle;
        else
            high = middle;
    }
    return low;
}

function sixDigits(number) {
    return String(Number(number.toPrecision(6)));
}

class Map2D {
    constructor(article) {
        this.output = article.querySelector(".readout");
        this.text = article.querySelector(".values").textContent;
        this.cell = null;
        for (const image of article.querySelectorAll("img[data-plot]"))
            this.watch(image);
    }

    // Decoded when it is first asked for, so that a page of many maps opens at once.
    get data() {
        if (!this.decoded) {
            this.decoded = JSON.parse(this.text);
            this.decoded.valence = numbersOf(this.decoded.valence);
            this.decoded.thickness = numbersOf(this.decoded.thickness);
        }
        return this.decoded;
    }

    watch(image) {
        const mark = document.createElement("div");
        mark.className = "mark";
        mark.hidden = true;
        image.parentElement.append(mark);
        const [width, height, px0, py0, px1, py1, rx0, ry0, rx1, ry1] = image.dataset.plot.split(" ").map(Number);
        const show = (column, row) => {
            this.cell = { column, row };
            const x = middle(this.data.x, column);
            const y = middle(this.data.y, row);
            mark.style.left = 100 * (px0 + (x - rx0) / (rx1 - rx0) * (px1 - px0)) / width + "%";
            mark.style.top = 100 * (py0 + (y - ry0) / (ry1 - ry0) * (py1 - py0)) / height + "%";
            mark.hidden = false;
            this.tell(column, row);
        };
        const follow = event => {
            const box = image.getBoundingClientRect();
            const left = (event.clientX - box.left) / box.width * width;
            const top = (event.clientY - box.top) / box.height * height;
            const column = cellAt(this.data.x, rx0 + (left - px0) / (px1 - px0) * (rx1 - rx0));
            const row = cellAt(this.data.y, ry0 + (top - py0) / (py1 - py0) * (ry1 - ry0));
            if (column >= 0 && row >= 0)
                show(column, row);
        };
        image.addEventListener("pointermove", follow);
        image.addEventListener("pointerdown", follow);
        image.addEventListener("blur", () => { mark.hidden = true; });
        image.addEventListener("pointerleave", () => { mark.hidden = image !== document.activeElement; });
        image.addEventListener("keydown", event => {
            const step = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] }[event.key];
            if (!step)
                return;
            event.preventDefault();
            const from = this.cell || { column: this.data.columns >> 1, row: this.data.rows >> 1 };
            show(within(from.column + step[0], this.data.columns), within(from.row + step[1], this.data.rows));
        });
    }

    tell(column, row) {
        const words = this.output.dataset;
        const i = row * this.data.columns + column;
        const valence = this.data.valence[i];
        const thickness = this.data.thickness[i];
        let text = words.place.replace("%1", sixDigits(middle(this.data.x, column)))
            .replace("%2", sixDigits(middle(this.data.y, row)));
        text += Number.isFinite(valence) ? words.valence.replace("%1", sixDigits(valence)) : words.none;
        if (Number.isFinite(valence) && Number.isFinite(thickness))
            text += words.thickness.replace("%1", sixDigits(thickness));
        this.output.textContent = text;
    }
}

function middle(edges, cell) {
    return (edges[cell] + edges[cell + 1]) / 2;
}

function within(cell, count) {
    return Math.min(Math.max(cell, 0), count - 1);
}

for (const article of document.querySelectorAll("article.map"))
    if (article.querySelector(".values"))
        new Map2D(article);
