"use strict";
// Tables: sorting and paging are DataTables', which would take text as HTML. So it is given no text at all: each cell is
// filled by the functions below, and the filters are our own.

const find = key => "#" + new URLSearchParams({ find: key });

/** How a value is shown, by the kind of its column: fill(cell, value, row). */
const cellKinds = {
    text: { fill: (cell, value) => cell.append(value ?? unknown) },
    code: { fill: (cell, value) => cell.append(element("code", null, value ?? unknown)) },
    token: { fill: (cell, value) => cell.append(element("code", null, value ?? unknown)) },
    site: {
        sort: siteKey,
        fill: (cell, value) => cell.append(value
            ? element("a", { href: find(value), title: "All that is known of this line" }, value)
            : element("span", { className: "dim" }, "place unknown")),
    },
    function: { fill: (cell, value) => cell.append(value
        ? element("a", { href: find(value), title: "All that is known of this function" }, value) : unknown) },
    frame: {
        numeric: true,
        fill: (cell, value) => cell.append(value === null || value === undefined ? unknown
            : element("a", { href: "#frame=" + value }, formats.count(value))),
    },
    name: { numeric: true, fill: (cell, value) => cell.append(value ?? unknown) },
    count: { numeric: true, fill: (cell, value) => cell.append(formats.count(value)) },
    share: { numeric: true, fill: (cell, value) => cell.append(formats.share(value)) },
    time: {
        numeric: true,
        fill: (cell, value) => {
            cell.append(formats.time(value));
            if (value >= 1000)
                cell.title = formats.count(value) + " ns";
        },
    },
    bytes: {
        numeric: true,
        fill: (cell, value) => {
            cell.append(formats.bytes(value));
            if (value >= 1024)
                cell.title = formats.count(value) + " bytes";
        },
    },
};

let searchWords = [];

/**
 * A table with its filter. Columns are {key, title, kind}, and may have get(row) instead of the row's member of that key,
 * fill(cell, value, row) instead of the kind's, help (a title for the heading), bar (show the size as a bar), and
 * optional (not shown where no row knows it) or varied (not shown where all rows have the same). order names the columns to sort by at first, best first: the first one
 * that is known.
 */
class ReportTable {
    constructor(host, { label, columns, order = [], empty, page = 25, accepts = rowHas }) {
        this.columns = columns.map(column => ({ get: row => row[column.key], ...cellKinds[column.kind], ...column }));
        Object.assign(this, { label, order, page, acceptsWords: accepts, words: [], most: {} });
        this.filter = element("input", { type: "search", placeholder: "Filter", "aria-label": "Filter " + label,
            autocomplete: "off", spellcheck: false });
        this.filter.addEventListener("input", () => {
            this.words = wordsOf(this.filter.value);
            this.draw();
        });
        this.table = element("table", { "aria-label": label });
        this.table.reportTable = this;
        this.nothing = element("p", { className: "nothing", hidden: true }, empty);
        this.left = element("p", { className: "left", hidden: true });
        this.scroll = element("div", { className: "scroll", tabIndex: 0, role: "region", "aria-label": label }, this.table);
        this.whole = element("div", { className: "filtered" }, this.filter, this.scroll);
        host.append(this.whole, this.nothing, this.left);
    }

    setRows(rows, left = 0) {
        this.nothing.hidden = rows.length > 0;
        this.whole.hidden = rows.length === 0;
        this.left.hidden = !left;
        this.left.textContent = `${plural(left, "row")} more ${left === 1 ? "is" : "are"} not in the report.`;
        for (const { key, get, bar } of this.columns) {
            if (bar)
                this.most[key] = rows.reduce((most, row) => Math.max(most, get(row) ?? 0), 0);
        }
        if (rows.length === 0)
            return;
        if (this.api)
            this.api.clear().rows.add(rows);
        else
            this.make(rows);
        this.columns.forEach(({ get, optional, varied }, place) => {
            if (optional || varied)
                this.api.column(place).visible(rows.some(row => varied ? get(row) !== get(rows[0]) : (get(row) ?? "") !== ""), false);
        });
        this.draw();
    }

    make(rows) {
        const columns = this.columns.map((column, place) => ({
            title: column.title,
            type: column.numeric ? "num" : "string",
            className: (column.numeric && column.kind !== "name" ? "number " : "") + column.kind,
            searchable: false,
            orderSequence: column.numeric ? ["desc", "asc"] : ["asc", "desc"],
            data: (row, type) => {
                if (type !== "sort")
                    return "";
                const value = column.get(row);
                return value === null || value === undefined ? column.numeric ? -1 : "" : column.sort ? column.sort(value) : value;
            },
            createdCell: (cell, unused, row) => this.fill(this.columns[place], cell, row),
        }));
        const known = this.order.find(key => rows.some(row => (this.column(key).get(row) ?? null) !== null));
        const place = this.columns.findIndex(column => column.key === known);
        this.api = $(this.table).DataTable({
            data: rows, columns, autoWidth: false, deferRender: true, orderClasses: false, pageLength: this.page,
            order: known ? [[place, this.columns[place].numeric ? "desc" : "asc"]] : [],
            lengthMenu: [10, 25, 100, 500], dom: 't<"under"ilp>', pagingType: "simple_numbers",
            language: { info: "_START_ to _END_ of _TOTAL_", infoEmpty: "", infoFiltered: " (of _MAX_)", lengthMenu: "_MENU_ a page",
                zeroRecords: "No row has all these words.", paginate: { previous: "Previous", next: "Next" } },
            drawCallback: () => this.under?.find(".paginate_button").attr("role", "button"),
        });
        // The region that scrolls has the table alone.
        this.under = $(this.table).siblings(".under");
        this.whole.append(this.under[0]);
        this.under.find("select").attr("aria-label", "Rows a page, " + this.label);
        // DataTables knows Enter alone.
        $(this.whole).on("keydown", ".paginate_button, th", event => {
            if (event.key === " ") {
                event.preventDefault();
                $(event.currentTarget).trigger($.Event("keypress", { which: 13 }));
            }
        });
        this.columns.forEach(({ help }, column) => {
            if (help)
                this.api.column(column).header().title = help;
        });
    }

    fill(column, cell, row) {
        const value = column.get(row);
        column.fill(cell, value, row);
        if (column.bar && value)
            cell.style.setProperty("--bar", (100 * value / this.most[column.key]).toFixed(1) + "%");
    }

    column(key) {
        return this.columns.find(column => column.key === key);
    }

    accepts(row) {
        return this.acceptsWords(row, this.words) && this.acceptsWords(row, searchWords);
    }

    /** Filters again if the search has changed since the last time. */
    refresh() {
        if (this.searched !== searchWords)
            this.draw();
    }

    draw() {
        this.searched = searchWords;
        if (!this.api || this.whole.hidden)
            return;
        this.api.draw();
        const { recordsTotal, recordsDisplay } = this.api.page.info();
        this.under[0].hidden = recordsTotal <= 10;
        this.under.find(".dataTables_paginate")[0].hidden = recordsDisplay <= this.api.page.len();
        this.filter.hidden = recordsTotal <= 3;
    }
}
$.fn.dataTable.ext.search.push((settings, texts, place, row) => settings.nTable.reportTable.accepts(row));
$.fn.dataTable.ext.errMode = "none";
$.fn.DataTable.ext.pager.numbers_length = 5;

/** Columns that several tables have. */
const columnOf = {
    site: { key: "site", title: "Line", kind: "site" },
    function: { key: "function", title: "Function", kind: "function" },
    call: { key: "call", title: "Call", kind: "code" },
    count: { key: "count", title: "Count", kind: "count" },
    time: { key: "time", title: "Time", kind: "time", bar: true, optional: true, help: "inside the driver, in the replay" },
    each: { key: "each", title: "Time each", kind: "time", optional: true,
        get: row => row.time === null || row.time === undefined || !row.count ? null : Math.round(row.time / row.count) },
    unchanged: { key: "unchanged", title: "Changed nothing", kind: "count", optional: true, help: "calls that changed nothing" },
    errors: { key: "errors", title: "Errors", kind: "count", optional: true },
    bytes: { key: "bytes", title: "Bytes", kind: "bytes", bar: true },
    name: { key: "name", title: "Name", kind: "name", help: "the name that the program had" },
    label: { key: "label", title: "Label", kind: "text", optional: true, help: "by glObjectLabel" },
    context: { key: "context", title: "Share group", kind: "name", varied: true },
    made: { key: "made", title: "Made", kind: "frame", help: "frame that made it" },
    deleted: { key: "deleted", title: "Deleted", kind: "frame", help: "frame that deleted it; – if none did" },
    frames: { key: "frames", title: "Frames", kind: "count", help: "in how many frames" },
    uploads: { key: "uploads", title: "Uploads", kind: "count" },
    uploaded: { key: "uploaded", title: "Uploaded", kind: "bytes", bar: true },
};
/** columns("site", {key...}, "count"): the shared ones by name. */
const columns = (...wanted) => wanted.map(one => typeof one === "string" ? columnOf[one] : one);
