"use strict";
// The frames: a chart over all of them, their pictures in step with it, and what one of them did.

const frames = report.frames;
// Calls after the last swap are one more.
const frameCount = frames.calls?.length ?? 0;
const pictureFrames = Object.keys(frames.pictures ?? {}).map(Number).sort((a, b) => a - b);
const frameTimes = [["processor", "Processor", "from the end of the frame in front of it to its own, by the capture"],
    ["driver", "Driver", "inside its calls, of the replay"],
    ["gpu", "GPU", "by timer queries of the replay"]].filter(([key]) => frames[key]);
const frameCounts = [["calls", "Calls"], ["draws", "Draws"], ["vertices", "Vertices"], ["changes", "State changes"],
    ["unchanged", "Changed nothing"], ["uploaded", "Uploaded", "bytes"], ["errors", "Errors"]]
    .filter(([key]) => frames[key]);
/** "5 ms" for "5.00 ms". */
const onAxis = format => value => format(value).replace(/(\.\d*?)0+(?=\D|$)/, "$1").replace(/\.(?=\D|$)/, "");
const ofFrame = (key, frame) => frames[key]?.[frame - 1] ?? null;

/** A frame is found by what its calls say; by its number as "frame 17". */
function frameHas(row, words) {
    if (words.length === 0)
        return true;
    if (words.length === 2 && words[0] === "frame")
        return words[1] === String(row.frame);
    const { functions = noTable, changes = noTable, uploads = noTable, groups = noTable } = frames.details?.[row.frame] ?? {};
    return [functions, changes, uploads, groups].some(table => rowsHave(table, words));
}

/** As rowHas() for any row of the table, without making objects of the rows: there may be millions of them. */
function rowsHave(table, words) {
    const columns = table.columns.map((name, column) => [column, { site: report.sites, function: report.functions }[name]]);
    return table.rows.some(values => {
        let text = "";
        for (const [column, texts] of columns) {
            const value = values[column];
            if (texts || typeof value === "string")
                text += "\n" + (texts ? texts[value] : value);
        }
        text = text.toLowerCase();
        return words.every(word => text.includes(word));
    });
}

/** A colour of the style sheet, for the canvas. */
function colour(name) {
    const probe = document.body.appendChild(element("i", { className: "swatch " + name }));
    const found = getComputedStyle(probe).color;
    probe.remove();
    return found;
}

class FramesView {
    constructor(host) {
        this.selected = 0;
        this.right = "";
        this.range = null;
        this.cut = true;
        this.build(host);
        this.draw();
        new ResizeObserver(() => {
            if (this.box.clientWidth !== this.width)
                this.draw();
        }).observe(this.box);
    }

    build(host) {
        this.shown = Object.fromEntries(frameTimes.map(([key]) => [key, true]));
        const checks = frameTimes.map(([key, title, help]) => {
            const check = element("input", { type: "checkbox", checked: true });
            check.addEventListener("change", () => {
                this.shown[key] = check.checked;
                this.draw();
            });
            return element("label", { title: help }, check, element("i", { className: "swatch " + key }), title);
        });
        const right = element("select", null, element("option", { value: "" }, "nothing"),
            ...frameCounts.map(([key, title]) => element("option", { value: key }, title)));
        if (!frameTimes.length)
            this.right = right.value = "calls";
        right.addEventListener("change", () => {
            this.right = right.value;
            this.draw();
        });
        this.cutBox = element("input", { type: "checkbox", checked: true });
        this.cutBox.addEventListener("change", () => {
            this.cut = this.cutBox.checked;
            this.draw();
        });
        this.cutText = element("span");
        this.cutLabel = element("label", null, this.cutBox, this.cutText);
        const button = (text, title, act) => {
            const made = element("button", { type: "button", title, "aria-label": title }, text);
            made.addEventListener("click", act);
            return made;
        };
        this.readout = element("p", { className: "readout" });
        this.plot = element("div", { className: "plot", role: "img",
            "aria-label": "Time of each frame. The table of frames has the same numbers." });
        this.band = element("div", { className: "band" });
        this.box = element("div", { className: "chart" }, this.band, this.plot);
        this.strip = element("div", { className: "strip", role: "group", "aria-label": "Pictures of frames" });
        this.detail = element("div", { className: "detail", hidden: true });
        host.append(element("div", { className: "controls" }, ...checks,
            element("label", null, element("i", { className: "swatch other" }), "Right axis ", right), this.cutLabel,
            element("span", { className: "buttons" },
                button("−", "Zoom out", () => this.zoom(2)), button("+", "Zoom in", () => this.zoom(0.5)),
                button("All", "All frames", () => this.showRange(null)))), this.readout,
            this.box, this.strip, this.detail, element("h3", null, "All frames"));
        this.buildDetail(button);
        this.table = new ReportTable(host, { label: "Frames", empty: "No frame was finished.", accepts: frameHas, columns: [
            { key: "frame", title: "Frame", kind: "frame" }, { key: "start", title: "Start", kind: "time", optional: true,
                help: "from the first call of the capture" },
            ...frameTimes.map(([key, title, help]) => ({ key, title, help, kind: "time", bar: true })),
            ...frameCounts.map(([key, title, kind = "count"]) => ({ key, title, kind, bar: key === "calls" }))] });
        this.table.setRows(Array.from({ length: frameCount }, (unused, place) => {
            const row = { frame: place + 1 };
            for (const key of ["start", ...frameTimes.map(one => one[0]), ...frameCounts.map(one => one[0])])
                row[key] = ofFrame(key, place + 1);
            return row;
        }));
    }

    buildDetail(button) {
        this.heading = element("h3", { tabIndex: -1 });
        this.picture = element("div", { className: "picture" });
        this.facts = element("dl", { className: "facts" });
        this.earlier = button("←", "Frame before (left arrow)", () => this.step(-1));
        this.later = button("→", "Next frame (right arrow)", () => this.step(1));
        const functions = element("section", { "aria-label": "Calls by function" }, element("h4", null, "Calls by function"));
        const changes = element("section", { "aria-label": "State changes" }, element("h4", null, "State changes"));
        const uploads = element("section", { "aria-label": "Uploads" }, element("h4", null, "Uploads"));
        const groups = element("section", { "aria-label": "Debug groups" }, element("h4", null, "Debug groups"));
        this.noDetail = element("p", { className: "nothing" }, "The report has no details of this frame.");
        this.details = element("div", { className: "details" }, functions, changes, groups, uploads);
        this.detail.append(element("div", { className: "head" }, this.heading, this.earlier, this.later),
            element("div", { className: "summary" }, this.picture, this.facts), this.noDetail, this.details);
        const page = 10;
        this.tables = {
            functions: new ReportTable(functions, { label: "Calls of the frame by function", empty: "No calls.", page,
                order: ["time", "count"], columns: columns("function", "count", "time", "each", "unchanged", "errors") }),
            changes: new ReportTable(changes, { label: "State changes of the frame", empty: "No state changes.", page,
                order: ["time", "count"], columns: columns("site", "call", "count", "time", "unchanged") }),
            uploads: new ReportTable(uploads, { label: "Uploads of the frame", empty: "No uploads.", page, order: ["bytes"],
                columns: columns("site", "function", { key: "object", title: "Object", kind: "text",
                    fill: (cell, value) => cell.append(objectLink(value, this.selected)) }, "bytes", "count",
                { key: "again", title: "Same again", kind: "count",
                    help: "how often the same bytes had been sent to the same object before" }) }),
            groups: new ReportTable(groups, { label: "Debug groups of the frame", empty: "No debug groups.", page,
                columns: columns(...groupColumns) }),
        };
    }

    /** Times shown on the left axis, and the count on the right one: [key, title] of each. */
    series() {
        return [...frameTimes.filter(([key]) => this.shown[key]), ...frameCounts.filter(([key]) => key === this.right)];
    }

    draw() {
        // Drawn where it isn't shown, the chart would get a width of its own choice.
        this.width = this.box.clientWidth;
        if (!this.width)
            return;
        const series = this.series();
        const times = series.filter(([key]) => key !== this.right);
        const limit = this.limit(times);
        this.chart?.destroy();
        this.plot.hidden = series.length === 0 || frameCount === 0;
        if (this.plot.hidden) {
            this.band.hidden = true;
            this.chart = null;
            this.strip.replaceChildren();
            return;
        }
        const rows = Array.from({ length: frameCount }, (unused, place) => [place + 1, ...series.map(([key]) => frames[key][place])]);
        const ink = colour("ink");
        const grid = colour("grid");
        const rightUnit = this.right === "uploaded" ? formats.bytes : formats.count;
        this.chart = new Dygraph(this.plot, rows, {
            labels: ["Frame", ...series.map(([, title]) => title)],
            colors: series.map(([key]) => colour(key === this.right ? "other" : key)),
            series: Object.fromEntries(series.filter(([key]) => key === this.right && times.length)
                .map(([, title]) => [title, { axis: "y2" }])),
            axes: {
                x: { drawGrid: false, pixelsPerLabel: 70, axisLabelFormatter: frame => Number.isInteger(frame) && frame > 0 ? formats.count(frame) : "" },
                y: { axisLabelWidth: 62, axisLabelFormatter: times.length ? onAxis(formats.time) : rightUnit,
                    valueRange: times.length && limit ? [0, limit] : null },
                y2: { axisLabelWidth: 62, axisLabelFormatter: rightUnit, independentTicks: true, drawGrid: false },
            },
            legend: "never", includeZero: true, drawPoints: 6 * frameCount <= this.width, pointSize: 2, strokeWidth: frameCount > 5000 ? 0.7 : 1.2,
            axisLineColor: ink, gridLineColor: grid, gridLineWidth: 0.5, animatedZooms: false, labelsKMB: false,
            showRangeSelector: frameCount > 10, rangeSelectorHeight: 30, rangeSelectorPlotStrokeColor: ink,
            rangeSelectorPlotFillColor: grid, rangeSelectorPlotFillGradientColor: grid, rangeSelectorForegroundStrokeColor: ink,
            rangeSelectorBackgroundStrokeColor: grid, xRangePad: 8,
            dateWindow: this.range ?? (frameCount <= 10 ? [0.5, frameCount + 0.5] : null),
            underlayCallback: (context, area, chart) => this.markErrors(context, area, chart),
            highlightCallback: (event, frame) => this.say(frame),
            unhighlightCallback: () => this.say(this.selected),
            clickCallback: (event, frame) => { location.hash = "frame=" + frame; },
            drawCallback: chart => {
                this.range = chart.isZoomed("x") && frameCount > 10 ? chart.xAxisRange() : null;
                this.placePictures(chart);
                this.placeBand(chart);
            },
        });
        this.say(this.selected);
    }

    /** Where to cut peaks off, so that one slow frame (often the first) does not flatten all others; null for not. */
    limit(times) {
        const most = times.reduce((most, [key]) => frames[key].reduce((a, b) => Math.max(a, b ?? 0), most), 0);
        const usual = Math.max(0, ...times.map(([key]) => quantile(frames[key], 0.98) ?? 0));
        const peaked = usual > 0 && most > 4 * usual;
        this.cutLabel.hidden = !peaked;
        this.cutText.textContent = `Cut peaks (up to ${formats.time(most)})`;
        return peaked && this.cut ? 1.5 * usual : null;
    }

    zoom(factor) {
        const [from, to] = this.range ?? [1, frameCount];
        const centre = this.selected >= from && this.selected <= to ? this.selected : (from + to) / 2;
        const half = Math.max(2, (to - from) * factor / 2);
        this.showRange(2 * half >= frameCount - 1 ? null : [centre - half, centre + half]);
    }

    showRange(range) {
        this.range = range;
        if (range)
            this.chart?.updateOptions({ dateWindow: range });
        else
            this.chart?.resetZoom();
    }

    /** A mark at the top for each frame with errors. */
    markErrors(context, area, chart) {
        context.fillStyle = colour("errors");
        frames.errors?.forEach((errors, place) => {
            if (errors)
                context.fillRect(chart.toDomXCoord(place + 1) - 1.5, area.y, 3, 6);
        });
    }

    /** Marks the chosen frame. Not in the chart's own drawing, which takes long for many frames. */
    placeBand(chart) {
        const [from, to] = chart.xAxisRange();
        const area = chart.getArea();
        const broad = Math.min(24, Math.max(2, chart.toDomXCoord(1) - chart.toDomXCoord(0)));
        this.band.hidden = !this.selected || this.selected < from || this.selected > to;
        const middle = chart.toDomXCoord(this.selected);
        const left = Math.max(area.x, middle - broad / 2);
        const right = Math.min(area.x + area.w, middle + broad / 2);
        this.band.style.cssText = `left: ${left}px; width: ${right - left}px; top: ${area.y}px; height: ${area.h}px`;
    }

    /** Pictures at their frames, as many as there is room for; the chosen frame's first. */
    placePictures(chart) {
        const [from, to] = chart.xAxisRange();
        const broad = 124;
        const taken = [];
        const placed = [];
        const last = this.strip.clientWidth - broad;
        const inside = pictureFrames.filter(frame => frame >= from && frame <= to);
        const candidates = inside.includes(this.selected) ? [this.selected, ...inside] : inside;
        for (const frame of candidates) {
            const left = Math.max(0, Math.min(last, chart.toDomXCoord(frame) - broad / 2));
            if (taken.some(other => Math.abs(other - left) < broad + 4))
                continue;
            taken.push(left);
            placed.push([frame, left]);
        }
        placed.sort((a, b) => a[0] - b[0]);
        this.strip.hidden = pictureFrames.length === 0;
        this.strip.style.height = 133 + 15 * frameTimes.length + "px";
        this.strip.replaceChildren(...placed.map(([frame, left]) => {
            const thumbnail = element("a", { href: "#frame=" + frame, className: "thumbnail" },
                element("img", { src: frames.pictures[frame], alt: "" }),
                element("span", null, element("b", null, "Frame " + formats.count(frame)),
                    element("span", null, plural(ofFrame("calls", frame), "call")),
                    ...frameTimes.map(([key, title]) => element("span", { title }, element("i", { className: "swatch " + key }),
                        formats.time(ofFrame(key, frame))))));
            if (frame === this.selected)
                thumbnail.setAttribute("aria-current", "true");
            thumbnail.style.left = left + "px";
            return thumbnail;
        }));
    }

    say(frame) {
        const parts = [...frameTimes, ...frameCounts].map(([key, title, kind]) => [title,
            (frameTimes.some(one => one[0] === key) ? formats.time : formats[kind] ?? formats.count)(ofFrame(key, frame))]);
        this.readout.replaceChildren(...frame ? [element("b", null, "Frame " + formats.count(frame)),
            ...parts.map(([title, value]) => element("span", null, title + " ", element("b", null, value)))]
            : [element("span", null, "Click a frame, or use the left and right arrow keys. Drag to zoom, double click for all.")]);
    }

    step(by) {
        location.hash = "frame=" + Math.max(1, Math.min(frameCount, this.selected + by));
    }

    /** Shows what a frame did; 0 for none. */
    select(frame) {
        this.selected = frame >= 1 && frame <= frameCount ? frame : 0;
        this.detail.hidden = !this.selected;
        if (this.selected)
            this.showDetail();
        if (this.range && this.selected && (this.selected < this.range[0] || this.selected > this.range[1])) {
            const half = (this.range[1] - this.range[0]) / 2;
            this.showRange([this.selected - half, this.selected + half]);
        } else if (this.chart) {
            this.placePictures(this.chart);
            this.placeBand(this.chart);
        }
        this.say(this.selected);
    }

    showDetail() {
        const frame = this.selected;
        this.heading.textContent = `Frame ${formats.count(frame)} of ${formats.count(frameCount)}`
            + (frames.unfinished && frame === frameCount ? ", which was not ended" : "");
        this.earlier.disabled = frame === 1;
        this.later.disabled = frame === frameCount;
        const picture = frames.pictures?.[frame];
        const [width, height] = frames.shapes?.[frame] ?? [0, 0];
        this.picture.replaceChildren(picture ? element("img", { src: picture, alt: "Picture of frame " + frame })
            : element("p", { className: "nothing" }, "No picture of this frame."));
        const facts = [...frameTimes.map(([key, title]) => [title, formats.time(ofFrame(key, frame))]),
            ...frameCounts.map(([key, title, kind = "count"]) => [title, formats[kind](ofFrame(key, frame))]),
            ["Start", formats.time(ofFrame("start", frame))], ["Surface", width ? `${width} × ${height}` : unknown]];
        this.facts.replaceChildren(...facts.map(([title, value]) => element("div", null, element("dt", null, title), element("dd", null, value))));
        const detail = frames.details?.[frame];
        this.noDetail.hidden = Boolean(detail);
        this.details.hidden = !detail;
        for (const [key, table] of Object.entries(this.tables))
            table.setRows(rowsOf(detail?.[key]), detail?.[key]?.left);
        this.tables.groups.whole.parentNode.hidden = !detail?.groups;
    }
}
const groupColumns = [{ key: "group", title: "Group", kind: "text" }, "count", { key: "calls", title: "Calls", kind: "count" },
    { key: "time", title: "Time in calls", kind: "time", bar: true, optional: true },
    { key: "gpu", title: "GPU", kind: "time", bar: true, optional: true }];
