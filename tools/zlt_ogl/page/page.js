"use strict";
// The page: its sections, the overview, the search over all of it, and what the address says is shown.

const overview = report.overview;
const allCalls = overview.calls || null;
const shareOfCalls = { key: "share", title: "Of all calls", kind: "share", get: row => allCalls && row.count / allCalls };

/** A section that is one table: a sentence above it, the table, and what to say if it is empty. */
const tableSection = (id, title, table, options, sentence) => ({ id, title, table, build: host => {
    const rows = rowsOf(table);
    if (sentence && rows.length)
        host.append(element("p", { className: "sentence" }, sentence(rows)));
    const made = new ReportTable(host, { label: title, ...options });
    made.setRows(rows, table?.left);
    return made;
} });
const withTime = rows => rows.some(row => row.time !== null) ? `, and took ${formats.time(sum(rows, "time"))}` : "";

/** The names of a leak, with labels: "3 “grass”, 4, ...". */
const labelledNames = row => String(row.names ?? "").replace(/\d+/g, name => {
    const object = objectNamed(row.kind, Number(name), null);
    return object ? nameAndLabel(object) : name;
});

const life = ["site", "made", "deleted"];
const functionTable = { build: host => {
    const { rows, left } = callsByFunction();
    const detailed = Object.keys(frames.details ?? {}).length;
    if (!report.calls && detailed < frameCount)
        host.append(element("p", { className: "sentence" }, `In the ${plural(detailed, "frame")} of which the report has details.`));
    const made = new ReportTable(host, { label: "Calls by function", empty: "No calls.", order: ["time", "count"],
        columns: columns("function", "count", shareOfCalls, "time", "each", "unchanged", "errors") });
    made.setRows(rows, left);
    return made;
} };

const sections = [
    { id: "overview", title: "Overview", build: buildOverview },
    { id: "frames", title: "Frames", count: report.overview.frames || frameCount, found: words => {
        let found = 0;
        for (let frame = 1; frame <= frameCount; ++frame)
            found += frameHas({ frame }, words);
        return found;
    }, build: host => new FramesView(host) },
    { id: "functions", title: "Functions", ...functionTable, rows: () => callsByFunction().rows },
    { heading: "Findings" },
    tableSection("errors", "Errors", report.errors, { empty: "No errors.", order: ["count"], columns: columns("site",
        { key: "error", title: "Error", kind: "token" }, "call", "count", { key: "message", title: "The driver says", kind: "text", optional: true },
        { key: "frame", title: "First frame", kind: "frame" }, { key: "number", title: "First call", kind: "count", help: "number of the first such call" },
        { key: "groups", title: "Debug groups", kind: "text", optional: true }) },
    rows => `${plural(sum(rows, "count"), "error")} at ${plural(new Set(rows.map(row => row.site)).size, "line")}.`),
    tableSection("unchanged", "Changed nothing", report.unchanged, { empty: "No call that changed nothing.", order: ["time", "count"],
        columns: columns("site", "call", "count", shareOfCalls,
            { key: "of", title: "Of its calls", kind: "share", get: row => row.of ? row.count / row.of : null,
                help: "share of the calls of this function by this line" }, "time", "each") },
    rows => `${plural(sum(rows, "count"), "call")} set what was set already: ${formats.share(allCalls && sum(rows, "count") / allCalls)} of all calls${withTime(rows)}.`),
    tableSection("stalls", "Stalls", report.stalls, { empty: "No call waited for the graphics processor.", order: ["time", "count"],
        columns: columns("site", "function", { key: "why", title: "Why", kind: "text" }, "count", "time", "each",
            { ...columnOf.bytes, title: "Bytes back" }, "frames") },
    rows => `${plural(sum(rows, "count"), "call")} waited for the graphics processor${withTime(rows)}.`),
    tableSection("habits", "Costly habits", report.habits, { empty: "No costly habits.", order: ["time", "count"], columns: columns(
        { key: "title", title: "Habit", kind: "text" }, { key: "value", title: "Number", kind: "count",
            fill: (cell, value, row) => cell.append(`${formats.count(value)} ${row.unit}`) },
        { key: "why", title: "Why it costs", kind: "text" }, { ...columnOf.site, title: "Most at" }, "function", "count", "time") }),
    tableSection("leaks", "Leaks", report.leaks, { empty: "No leaks: all was deleted before the last context went.", order: ["bytes", "count"], columns: columns(
        { key: "kind", title: "Kind", kind: "text" }, "site", "count", "bytes",
        { key: "names", title: "Names", kind: "text", get: labelledNames }, { key: "when", title: "Still there", kind: "text" }) },
    rows => `${plural(sum(rows, "count"), "object")} with ${formats.bytes(sum(rows, "bytes"))} ${sum(rows, "count") === 1 ? "was" : "were"} never deleted.`),
    { heading: "Objects" },
    { id: "textures", title: "Textures", table: report.textures, build: host => new TexturesView(host) },
    tableSection("buffers", "Buffers", report.buffers, { empty: "No buffers.", order: ["bytes"], columns: columns("name", "label",
        { key: "usage", title: "Usage", kind: "token" }, "bytes", ...life, "uploads", "uploaded", "context") }),
    { id: "programs", title: "Programs, shaders", table: report.programs, more: report.shaders, build: host => new ProgramsView(host) },
    tableSection("lists", "Display lists", report.lists, { empty: "No display lists.", order: ["used"], columns: columns("name", "label",
        { key: "calls", title: "Calls in it", kind: "count" }, { key: "used", title: "Used", kind: "count", help: "calls of it" }, ...life, "context") }),
    tableSection("others", "Other objects", report.others, { empty: "No other objects.", columns: columns(
        { key: "kind", title: "Kind", kind: "text" }, "name", "label", ...life, "context") }),
    { heading: "" },
    tableSection("groups", "Debug groups", report.groups, { empty: "No debug groups.", columns: columns(...groupColumns, "frames") }),
    { id: "left", title: "Left out", rows: () => report.leftOut.map(text => ({ text })), build: host => host.append(report.leftOut.length
        ? element("ul", null, ...report.leftOut.map(sentence => element("li", null, sentence)))
        : element("p", { className: "nothing" }, "Nothing was left out.")) },
].map(section => ({ ...section, rows: section.rows ?? (() => [...rowsOf(section.table), ...rowsOf(section.more)]) }));
const sectionOf = new Map(sections.map(section => [section.id, section]));
sectionOf.get("functions").count = report.calls?.rows.length ?? callsByFunction().rows.length;

function buildOverview(host) {
    const o = overview;
    const times = [o.processor !== null ? `in ${formats.time(o.processor)}` : "", o.driverTime !== null ? `${formats.time(o.driverTime)} of it in the driver` : ""];
    const number = (value, one) => element("b", null, plural(value, one));
    host.append(element("p", { className: "sentence" }, element("code", null, o.program || o.file), " made ", number(o.calls, "call"), " in ",
        number(o.frames, "frame"), times[0] ? " " + times[0] : "", " on ", plural(o.threads, "thread"), " and ", plural(o.contexts, "context"),
        ", with ", number(o.errors, "error"), `. Driver: ${o.driver || "unknown"}.`));
    const facts = [["Program", o.program], ["Capture", o.file], ["Driver of the capture", o.driver], ["Driver of the replay", o.replay],
        ["Frames", formats.count(o.frames)], ["Calls", formats.count(o.calls)],
        ["Calls a frame", o.frames ? formats.count(Math.round(o.calls / o.frames)) : null], ["Threads, contexts", `${o.threads}, ${o.contexts}`],
        ["Errors", formats.count(o.errors)], ["Time of the program", formats.time(o.processor)], ["Time in the driver", formats.time(o.driverTime)],
        ["Time of the GPU", formats.time(o.gpu)], ["Report made", o.made]];
    const list = element("dl", { className: "facts wide" }, ...facts.filter(fact => fact[1])
        .map(([title, value]) => element("div", null, element("dt", null, title), element("dd", null, value))));
    host.append(element("div", { className: "summary" }, element("div", { className: "picture" }, o.picture
        ? element("img", { src: o.picture, alt: "Picture of a frame of the program" }) : element("p", { className: "nothing" }, "No picture.")), list));
    host.append(element("h3", null, "Findings"), buildFindings());
    if (frameTimes.length && frameCount) {
        const parts = [["median", 0.5], ["95 % below", 0.95], ["99 % below", 0.99]];
        host.append(element("h3", null, "Time of a frame"), element("div", { className: "scroll" }, element("table", { "aria-label": "Time of a frame", className: "plain" },
            element("thead", null, element("tr", null, element("th"), ...parts.map(([title]) => element("th", { className: "number", scope: "col" }, title)),
                element("th", { className: "number", scope: "col" }, "longest"))),
            element("tbody", null, ...frameTimes.map(([key, title, help]) => {
                const most = frames[key].reduce((most, value, place) => value > (frames[key][most] ?? -1) ? place : most, 0);
                return element("tr", { title: help }, element("th", { scope: "row" }, title),
                    ...parts.map(([, share]) => element("td", { className: "number" }, formats.time(quantile(frames[key], share)))),
                    element("td", { className: "number" }, formats.time(frames[key][most]) + " in ", element("a", { href: "#frame=" + (most + 1) }, "frame " + formats.count(most + 1))));
            })))));
    }
    if (report.leftOut.length)
        host.append(element("h3", null, "Left out of this report"), element("ul", null, ...report.leftOut.map(sentence => element("li", null, sentence))));
    if (o.info?.length)
        host.append(element("h3", null, "The capture"), element("pre", { className: "log" }, o.info.join("\n")));
}

/** What there is to look at, each in a sentence with its worst line. */
function buildFindings() {
    const worst = (rows, key) => rows.reduce((most, row) => (row[key] ?? -1) > (most[key] ?? -1) ? row : most, rows[0]);
    const line = row => row.site ? [" Most at ", element("a", { href: find(row.site) }, row.site),
        row.error ? `: ${row.error} in ${row.call}.` : "."] : [];
    const found = [];
    const say = (id, rows, text, key) => {
        if (rows.length)
            found.push(element("li", null, element("a", { href: "#" + id }, text), ...key ? line(worst(rows, key)) : []));
    };
    const [errors, unchanged, stalls, habits, leaks] = [report.errors, report.unchanged, report.stalls, report.habits, report.leaks].map(rowsOf);
    const timeOrCount = rows => rows.some(row => row.time) ? "time" : "count";
    say("errors", errors, plural(sum(errors, "count"), "error") + ".", "count");
    const failed = [...rowsOf(report.programs).filter(row => row.linked === false), ...rowsOf(report.shaders).filter(row => row.compiled === false)];
    say("programs", failed, plural(failed.length, "program or shader", "programs or shaders") + " did not compile or link.");
    say("unchanged", unchanged, `${plural(sum(unchanged, "count"), "call")} changed nothing (${formats.share(allCalls && sum(unchanged, "count") / allCalls)})${withTime(unchanged)}.`, timeOrCount(unchanged));
    say("stalls", stalls, `${plural(sum(stalls, "count"), "call")} waited for the graphics processor${withTime(stalls)}.`, timeOrCount(stalls));
    for (const habit of habits)
        say("habits", [habit], `${habit.title}: ${formats.count(habit.value)} ${habit.unit}.`, "count");
    say("leaks", leaks, `${plural(sum(leaks, "count"), "object")} never deleted, ${formats.bytes(sum(leaks, "bytes"))}.`, "bytes");
    return found.length ? element("ul", { className: "findings" }, ...found) : element("p", { className: "nothing" }, "Nothing.");
}

const main = document.getElementById("main");
const searchBox = document.getElementById("search");
const found = document.getElementById("found");
let shownId = "overview";
let beforeSearch = "";

/** Builds the section if it is not there yet, and filters its tables by the search. */
function show(section) {
    if (!section.host) {
        section.host = element("section", { className: section.id, "aria-labelledby": "heading-" + section.id }, element("h2", { id: "heading-" + section.id }, section.title));
        // In the order of the list, for a search; but the frames, which are found by the hundred, last.
        const after = section.id === "frames" ? [] : sections.slice(sections.indexOf(section) + 1);
        const next = after.find(one => one.host) ?? (after.length ? sectionOf.get("frames") : null);
        main.insertBefore(section.host, next?.host ?? null);
        section.view = section.build(section.host) ?? section;
    }
    section.host.hidden = false;
    section.view.table?.refresh?.();
    section.view.refresh?.();
}

/** The sections that have rows with the words, or the one that was chosen. */
function showAll(stacked) {
    main.classList.toggle("searching", stacked);
    for (const section of sections.filter(one => one.id)) {
        if (stacked ? section.hits > 0 : section.id === shownId)
            show(section);
        else if (section.host)
            section.host.hidden = true;
    }
    for (const { id, link } of sections.filter(one => one.link)) {
        const current = !stacked && id === shownId;
        link[current ? "setAttribute" : "removeAttribute"]("aria-current", "page");
        if (current && link.parentNode.scrollWidth > link.parentNode.clientWidth)
            link.parentNode.scrollLeft = link.offsetLeft - 16;
    }
}

/** Counts what has the words, in the navigation; the tables filter themselves when they are shown. */
function search(text) {
    if (document.activeElement !== searchBox || !text)
        searchBox.value = text;
    const words = wordsOf(text);
    if (words.join(" ") === searchWords.join(" ") && found.dataset.counted)
        return;
    found.dataset.counted = "true";
    searchWords = words;
    let rows = 0;
    let tables = 0;
    for (const section of sections.filter(one => one.id)) {
        section.hits = searchWords.length === 0 ? 0 : section.found ? section.found(searchWords)
            : section.rows().reduce((hits, row) => hits + rowHas(row, searchWords), 0);
        rows += section.hits;
        tables += section.hits > 0;
        const total = section.count ?? section.rows().length + (section.table?.left ?? 0);
        section.number.textContent = section.id === "overview" ? ""
            : searchWords.length ? `${formats.count(section.hits)}/${formats.count(total)}` : formats.count(total);
        section.link.classList.toggle("none", section.id !== "overview" && total === 0 || searchWords.length > 0 && section.hits === 0);
    }
    found.textContent = searchWords.length === 0 ? "" : rows ? `${plural(rows, "row")} in ${plural(tables, "section")}` : "nothing found";
}

/** Shows what the address says: #errors, #frame=17, #texture=3, #program=1, #shader=2, #find=scene.cpp:105. */
function route() {
    const address = new URLSearchParams(location.hash.slice(1));
    const [key = "overview", value] = address.entries().next().value ?? [];
    const dialog = document.getElementById("larger");
    if (key !== "texture" && dialog.open)
        dialog.close();
    search(key === "find" ? value : "");
    if (searchWords.length) {
        showAll(true);
        window.scrollTo(0, 0);
        return;
    }
    beforeSearch = location.hash;
    const id = { frame: "frames", texture: "textures", program: "programs", shader: "programs" }[key] ?? key;
    const before = shownId;
    shownId = sectionOf.has(id) ? id : "overview";
    showAll(false);
    if (before !== shownId)
        window.scrollTo(0, 0);
    const view = sectionOf.get(shownId).view;
    if (key === "frame") {
        view.select(Number(value));
        view.plot.parentNode.scrollTop = 0;
        if (view.heading.getBoundingClientRect().top < 0)
            view.heading.scrollIntoView();
    } else if (key === "texture" || key === "program" || key === "shader")
        view.open(key === "texture" ? Number(value) : key, Number(value));
}

function buildNavigation() {
    const nav = document.getElementById("sections");
    for (const section of sections) {
        if (!section.id) {
            nav.append(element("span", { className: "heading" }, section.heading));
            continue;
        }
        section.number = element("span", { className: "hits" });
        section.link = element("a", { href: "#" + section.id }, section.title, section.number);
        section.link.addEventListener("click", event => {
            if (searchWords.length && section.hits) {
                event.preventDefault();
                section.host.scrollIntoView();
            }
        });
        nav.append(section.link);
    }
}

/** A search has an address, so that the browser's "back" ends it. */
function searchFor(text) {
    if (!text)
        location.hash = beforeSearch;
    else if (searchWords.length)
        location.replace(find(text));
    else
        location.hash = find(text);
}

function useTheme(theme) {
    document.documentElement.dataset.theme = theme;
    sectionOf.get("frames").view?.draw();
}

function start() {
    document.getElementById("title").textContent = overview.file;
    document.title = `${overview.file} - OpenGL report`;
    document.getElementById("reading").remove();
    buildNavigation();
    window.addEventListener("hashchange", route);
    let waiting = 0;
    searchBox.addEventListener("input", () => {
        clearTimeout(waiting);
        waiting = setTimeout(() => searchFor(searchBox.value.trim()), 150);
    });
    document.addEventListener("keydown", event => {
        const typing = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName);
        if (event.key === "/" && !typing) {
            event.preventDefault();
            searchBox.select();
        } else if (event.key === "Escape" && event.target === searchBox) {
            searchBox.value = "";
            searchFor("");
        } else if (/^Arrow(Left|Right)$/.test(event.key) && !typing && shownId === "frames" && frameCount
            && !event.altKey && !event.ctrlKey && !event.metaKey && !event.target.classList.contains("scroll")) {
            event.preventDefault();
            sectionOf.get("frames").view.step(event.key === "ArrowLeft" ? -1 : 1);
        }
    });
    document.getElementById("skip").addEventListener("click", () => main.focus());
    const theme = document.getElementById("theme");
    try {
        theme.value = localStorage.getItem("theme") ?? "";
    } catch { /* some browsers keep nothing for pages from the disk */ }
    useTheme(theme.value);
    theme.addEventListener("change", () => {
        useTheme(theme.value);
        try {
            localStorage.setItem("theme", theme.value);
        } catch { /* as above */ }
    });
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => sectionOf.get("frames").view?.draw());
    route();
    document.documentElement.dataset.ready = "true";
}
start();
