"use strict";
// The objects: textures as pictures, programs with their sources.

/** "texture 5" as a link to it, with its label. */
function objectLink(text, frame) {
    const [, kind, name] = /^(.*?) (\d+)\b/.exec(text) ?? [];
    const object = kind && objectNamed(kind, Number(name), frame);
    if (!object)
        return text;
    const shown = text + (object.label ? ` “${object.label}”` : "");
    return kind === "texture" || kind === "program" || kind === "shader"
        ? element("a", { href: `#${kind}=${object.place}` }, shown) : shown;
}

const sizeOf = texture => texture.width === null ? unknown
    : [texture.width, texture.height, texture.depth].filter((size, axis) => axis === 0 || size > 1).join(" × ");

class TexturesView {
    constructor(host) {
        this.rows = rowsOf(report.textures);
        this.largest = document.getElementById("larger");
        this.order = element("select", null, ...[["bytes", "bytes"], ["name", "name"], ["uploaded", "uploaded bytes"],
            ["made", "frame that made it"]].map(([value, text]) => element("option", { value }, text)));
        this.order.addEventListener("change", () => this.draw());
        this.grid = element("ul", { className: "grid", "aria-label": "Pictures of textures" });
        this.more = element("p", { className: "more" });
        host.append(element("div", { className: "controls" }, element("label", null, "Sort pictures by ", this.order)), this.grid, this.more);
        this.table = new ReportTable(host, { label: "Textures", empty: "No textures.", order: ["bytes"], columns: columns(
            { key: "name", title: "Name", kind: "name",
                fill: (cell, value, row) => cell.append(element("a", { href: "#texture=" + row.place }, value)) }, "label",
            { key: "target", title: "Target", kind: "token" }, { key: "size", title: "Size", kind: "text", get: sizeOf,
                sort: size => siteKey(size) }, { key: "format", title: "Format", kind: "token" },
            { key: "levels", title: "Levels", kind: "count" }, "bytes", "site", "made", "deleted", "uploads", "uploaded", "context") });
        this.table.setRows(this.rows, report.textures.left);
        this.grid.addEventListener("scroll", () => {
            if (this.grid.scrollTop + 2 * this.grid.clientHeight > this.grid.scrollHeight)
                this.add();
        });
        this.largest.addEventListener("close", () => {
            if (location.hash.startsWith("#texture="))
                location.hash = "textures";
        });
        this.largest.addEventListener("keydown", event => {
            const step = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
            const next = step && this.sorted[this.sorted.findIndex(row => row.place === this.shown) + step];
            if (next)
                location.hash = "texture=" + next.place;
        });
        this.draw();
    }

    refresh() {
        this.table.refresh();
        if (this.searched !== searchWords)
            this.draw();
    }

    draw() {
        this.searched = searchWords;
        const key = this.order.value;
        const sign = key === "name" || key === "made" ? 1 : -1;
        this.sorted = this.rows.filter(row => rowHas(row, searchWords)).sort((a, b) => sign * ((a[key] ?? 0) - (b[key] ?? 0)));
        this.drawn = 0;
        this.grid.replaceChildren();
        this.order.closest(".controls").hidden = this.rows.length === 0;
        this.add();
    }

    /** More than fit at once on the largest screens, so that the grid scrolls, which adds the next ones. */
    add() {
        const next = this.sorted.slice(this.drawn, this.drawn + 240);
        this.drawn += next.length;
        this.grid.append(...next.map(row => element("li", null, element("a", { href: "#texture=" + row.place, className: "card" },
            this.image(row), element("b", null, nameAndLabel(row)), element("span", null, sizeOf(row)),
            element("code", null, row.format ?? unknown), element("span", null, formats.bytes(row.bytes),
                row.deleted === null ? "" : ", deleted")))));
        const left = this.sorted.length - this.drawn;
        this.more.textContent = left > 0 ? `${plural(left, "picture")} more below.` : "";
    }

    image(row) {
        return row.picture ? element("img", { src: row.picture, alt: "", loading: "lazy", className: "checked" })
            : element("span", { className: "none" }, row.note || "no picture");
    }

    /** The texture at that place of the table, large. */
    open(place) {
        const row = this.rows[place];
        if (!row)
            return;
        this.shown = place;
        const close = element("button", { type: "button", autofocus: true }, "Close");
        close.addEventListener("click", () => this.largest.close());
        const facts = [["Target", row.target], ["Size", sizeOf(row)], ["Format", row.format], ["Levels", formats.count(row.levels)],
            ["Bytes", `${formats.bytes(row.bytes)} (${formats.count(row.bytes)})`], ["Share group", row.context],
            ["Made", "in frame " + row.made], ["Deleted", row.deleted === null ? "never" : "in frame " + row.deleted],
            ["Uploads", `${formats.count(row.uploads)}, ${formats.bytes(row.uploaded)}`], ["Note", row.note]];
        this.largest.replaceChildren(
            element("div", { className: "head" }, element("h2", { id: "largerTitle" }, "Texture " + nameAndLabel(row)), close),
            row.picture ? element("img", { src: row.picture, className: "checked", alt: "Picture of texture " + nameAndLabel(row) })
                : element("p", { className: "nothing" }, row.note || "No picture."),
            element("dl", { className: "facts" }, ...facts.filter(fact => fact[1] !== null && fact[1] !== "")
                .map(([title, value]) => element("div", null, element("dt", null, title), element("dd", null, value))),
            element("div", null, element("dt", null, "Made at"), element("dd", null, row.site
                ? element("a", { href: find(row.site) }, row.site) : unknown))));
        if (!this.largest.open)
            this.largest.showModal();
    }
}

/** Which line of the source a line of a log names: "0:12(5): error", "0(12) : error", "ERROR: 0:12: ". */
const lineInLog = /^\s*(?:(?:ERROR|WARNING):\s*)?\d+[:(](\d+)\s*[):(]/;

class ProgramsView {
    constructor(host) {
        this.programs = rowsOf(report.programs);
        this.shaders = rowsOf(report.shaders);
        this.detail = element("div", { className: "detail", hidden: true });
        const done = { true: "yes", false: "no", null: "never" };
        const state = key => ({ key, title: key[0].toUpperCase() + key.slice(1), kind: "text", get: row => done[row[key]],
            fill: (cell, value) => {
                cell.append(value);
                cell.classList.toggle("bad", value === "no");
            } });
        const link = kind => ({ key: "name", title: "Name", kind: "name",
            fill: (cell, value, row) => cell.append(element("a", { href: `#${kind}=${row.place}` }, value)) });
        const kind = { key: "kind", title: "Kind", kind: "token" };
        host.append(this.detail, element("h3", null, "All programs"));
        const programs = new ReportTable(host, { label: "Programs", empty: "No programs.", order: ["used"], columns: columns(
            link("program"), "label", kind, state("linked"),
            { key: "parts", title: "Shaders", kind: "text", get: row => (row.shaders ?? []).map(place => this.shaders[place])
                .filter(Boolean).map(nameAndLabel).join(", ") },
            { key: "used", title: "Used", kind: "count", help: "calls that put it in use" }, "site", "made", "deleted", "context") });
        host.append(element("h3", null, "All shaders"));
        const shaders = new ReportTable(host, { label: "Shaders", empty: "No shaders.", columns: columns(
            link("shader"), "label", kind, state("compiled"),
            { key: "lines", title: "Lines", kind: "count", get: row => row.source ? row.source.split("\n").length : null },
            "site", "made", "deleted") });
        programs.setRows(this.programs, report.programs.left);
        shaders.setRows(this.shaders, report.shaders.left);
        this.tables = [programs, shaders];
    }

    refresh() {
        this.tables.forEach(table => table.refresh());
    }

    open(kind, place) {
        const row = (kind === "program" ? this.programs : this.shaders)[place];
        this.detail.hidden = !row;
        if (!row)
            return;
        const shaders = kind === "program" ? (row.shaders ?? []).map(one => this.shaders[one]).filter(Boolean) : [row];
        const heading = element("h3", { tabIndex: -1 }, `${kind === "program" ? "Program" : "Shader"} ${nameAndLabel(row)}`);
        this.detail.replaceChildren(heading);
        if (kind === "program") {
            const linked = { true: "Linked.", false: "Did not link.", null: "Never linked." }[row.linked];
            this.detail.append(element("p", { className: row.linked === false ? "bad" : "" }, `${linked} Put in use `
                + plural(row.used ?? 0, "time") + "."), ...row.log ? [element("h4", null, "Log"), element("pre", { className: "log" }, row.log)] : []);
        }
        this.detail.append(...shaders.map(shader => this.source(shader, kind === "program")));
        heading.focus({ preventScroll: true });
        this.detail.scrollIntoView({ block: "start" });
    }

    source(shader, named) {
        const lines = (shader.source ?? "").split("\n").map(line => element("span", { className: "line" }, line + "\n"));
        const source = element("pre", { className: "source", tabIndex: 0, role: "region", "aria-label": "Source of shader " + shader.name }, ...lines);
        const log = element("pre", { className: "log" });
        for (const text of (shader.log ?? "").split("\n")) {
            const target = lines[Number(lineInLog.exec(text)?.[1]) - 1];
            const part = element(target ? "button" : "span", null, text);
            part.addEventListener("click", () => {
                lines.forEach(line => line.classList.toggle("current", line === target));
                target?.scrollIntoView({ block: "center" });
            });
            log.append(part, "\n");
            if (target)
                target.classList.add("bad");
        }
        const compiled = { true: "compiled", false: "did not compile", null: "never compiled" }[shader.compiled];
        return element("section", { "aria-label": "Shader " + shader.name },
            element("h4", null, (named ? `Shader ${nameAndLabel(shader)}: ` : "") + shader.kind + ", ",
                element("span", { className: shader.compiled === false ? "bad" : "" }, compiled)),
            ...shader.log ? [log] : [], shader.source ? source : element("p", { className: "nothing" }, "No source."));
    }
}
