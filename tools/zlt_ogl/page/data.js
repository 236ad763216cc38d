"use strict";
// The data of the report, how its values are written, and how its rows are searched. Nothing here touches the page but
// element(), by which all of it is built: text goes in as text nodes, never as HTML.

const report = JSON.parse(document.getElementById("report").textContent);
const noTable = { columns: [], rows: [], left: 0 };

/** element("a", {href: "#errors"}, "text", otherElement): properties, or attributes where the name has a "-". */
function element(tag, properties, ...children) {
    const made = document.createElement(tag);
    for (const [key, value] of Object.entries(properties ?? {})) {
        if (key.includes("-") || key === "role")
            made.setAttribute(key, value);
        else
            made[key] = value;
    }
    made.append(...children.filter(child => child !== null && child !== undefined));
    return made;
}

const grouped = new Intl.NumberFormat("en-US");
const unknown = "–";

const digits = value => value >= 999.5 ? grouped.format(Math.round(value)) : value.toPrecision(3);

/** A value in the largest unit of which there is at least one; steps: [[size, name], ...], largest first. */
function inUnits(value, steps) {
    if (value === null || value === undefined)
        return unknown;
    const [size, name] = steps.find(step => Math.abs(value) >= step[0]) ?? steps[steps.length - 1];
    return (size === 1 ? grouped.format(value) : digits(value / size)) + "\u00a0" + name;
}
const timeUnits = [[1e9, "s"], [1e6, "ms"], [1e3, "µs"], [1, "ns"]];
const byteUnits = [[2 ** 30, "GiB"], [2 ** 20, "MiB"], [2 ** 10, "KiB"], [1, "B"]];

const formats = {
    count: value => value === null || value === undefined ? unknown : grouped.format(value),
    time: value => inUnits(value, timeUnits),
    bytes: value => inUnits(value, byteUnits),
    share: value => value === null || value === undefined ? unknown
        : value > 0 && value < 0.0005 ? "< 0.1\u00a0%" : (100 * value).toFixed(1) + "\u00a0%",
};
/** plural(1, "frame") is "1 frame", plural(2000, "frame") is "2,000 frames". */
const plural = (value, one, many = one + "s") => `${formats.count(value)} ${value === 1 ? one : many}`;
const sum = (rows, key) => rows.reduce((total, row) => total + (row[key] ?? 0), 0);
const totalOf = list => list ? list.reduce((total, value) => total + (value ?? 0), 0) : null;

const rowsOfTables = new WeakMap();

/** The rows of a table as objects, functions, sites and calls as text; `place` is a row's place in the table. */
function rowsOf(table) {
    if (!table)
        return [];
    let rows = rowsOfTables.get(table);
    if (!rows) {
        const texts = { site: report.sites, function: report.functions, call: report.texts };
        rows = table.rows.map((values, place) => {
            const row = { place };
            table.columns.forEach((name, column) => {
                const value = values[column];
                row[name] = texts[name] && typeof value === "number" ? texts[name][value] ?? "" : value;
            });
            return row;
        });
        rowsOfTables.set(table, rows);
    }
    return rows;
}

/** Sorts scene.cpp:9 in front of scene.cpp:105. */
const siteKey = site => site.replace(/\d+/g, number => number.padStart(9, "0"));

// Searching: all words must occur somewhere in a row.
const wordsOf = text => text.toLowerCase().split(/\s+/).filter(Boolean);
const textKey = Symbol("text");
const unsearched = new Set(["picture", "place"]);

function textOf(row) {
    if (row[textKey] === undefined) {
        row[textKey] = Object.entries(row).filter(([key, value]) => typeof value === "string" && !unsearched.has(key)
            || key === "name").map(entry => entry[1]).join("\n").toLowerCase();
    }
    return row[textKey];
}
const rowHas = (row, words) => words.every(word => textOf(row).includes(word));

// Objects by kind and name. A name can have had several objects, one after the other or in several share groups.
const objectTables = { texture: report.textures, buffer: report.buffers, program: report.programs,
    shader: report.shaders, list: report.lists, "display list": report.lists };
const objectsByName = new Map();

/** The object that had the name in that frame (or in any, if that is null), or undefined. */
function objectNamed(kind, name, frame) {
    kind = kind.toLowerCase().replace(/s$/, "");
    if (!objectsByName.has(kind)) {
        const names = new Map();
        const rows = objectTables[kind] ? rowsOf(objectTables[kind])
            : rowsOf(report.others).filter(row => row.kind.toLowerCase() === kind);
        for (const row of rows)
            names.set(row.name, [...names.get(row.name) ?? [], row]);
        objectsByName.set(kind, names);
    }
    const named = objectsByName.get(kind).get(name) ?? [];
    const lived = row => frame === null || row.made <= frame && (row.deleted === null || row.deleted >= frame);
    return named.find(lived) ?? named[0];
}

/** "5", or "5 “grass”". */
const nameAndLabel = object => object.label ? `${object.name} “${object.label}”` : String(object.name);

/** The value below which a share of the list is. */
function quantile(list, share) {
    const known = Float64Array.from(list.filter(value => value !== null)).sort();
    return known.length ? known[Math.min(known.length - 1, Math.floor(share * known.length))] : null;
}

/** Calls by function of the whole capture, or, where the report has no such table, of the frames with details. */
function callsByFunction() {
    if (report.calls)
        return { rows: rowsOf(report.calls), left: report.calls.left };
    const sums = new Map();
    for (const detail of Object.values(report.frames.details ?? {})) {
        const { columns, rows } = detail.functions ?? noTable;
        const [name, ...numbers] = ["function", "count", "time", "unchanged", "errors"].map(key => columns.indexOf(key));
        for (const row of rows) {
            const total = sums.get(row[name]) ?? [null, null, null, null];
            numbers.forEach((column, place) => {
                if (row[column] !== null && row[column] !== undefined)
                    total[place] = (total[place] ?? 0) + row[column];
            });
            sums.set(row[name], total);
        }
    }
    return { left: 0, rows: [...sums].map(([name, [count, time, unchanged, errors]], place) => (
        { place, function: report.functions[name], count, time, unchanged, errors })) };
}
