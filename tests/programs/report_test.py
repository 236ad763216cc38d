#!/usr/bin/python3
"""Uses a page of `zlt_ogl report` in Chromium, as people do: by mouse, by keyboard alone, on a small screen.

report_test.py PAGE [--expect FILE] [--screenshots FOLDER] [--hostile] [-k TEST]

--expect: what the page has to show, found in another way: {"frames": 5, "calls": 1200, "errors": [["scene.cpp:105",
"GL_INVALID_ENUM", 3]], "functions": {"glBegin": 7}}. --hostile: labels of the page's program are HTML. How long the page
and one of 2,000 frames take to open is printed, not tested.
"""
import argparse, copy, json, os, pathlib, re, sys, tempfile, time, unittest
from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

parser = argparse.ArgumentParser()
parser.add_argument("page")
parser.add_argument("--expect")
parser.add_argument("--screenshots")
parser.add_argument("--hostile", action="store_true")
options, of_unittest = parser.parse_known_args()

# Ends a script, is an element that acts, ends an attribute, and has an entity.
HOSTILE = """ </script><script>document.title="owned"</script><img src=x onerror='document.title="owned"'>"&lt;'"""
DATA = re.compile(r'(<script type="application/json" id="report">)(.*?)(</script>)', re.S)
html = open(options.page, encoding="utf-8").read()
data = json.loads(DATA.search(html)[2])
OVERFLOW = "const page = document.documentElement; return page.scrollWidth - page.clientWidth"
folder = tempfile.TemporaryDirectory()


def page_with(name, changed):
    path = os.path.join(folder.name, name + ".html")
    text = json.dumps(changed).replace("<", "\\u003c")
    with open(path, "w", encoding="utf-8") as file:
        file.write(DATA.sub(lambda found: found[1] + text + found[3], html))
    return path


def tables(value):
    if isinstance(value, dict) and "rows" in value:
        yield value
    elif isinstance(value, dict):
        for part in value.values():
            yield from tables(part)


def each_text(value, change):
    if isinstance(value, dict):
        return {key: part if key == "columns" else each_text(part, change) for key, part in value.items()}
    if isinstance(value, list):
        return [each_text(part, change) for part in value]
    return change(value) if isinstance(value, str) and not value.startswith("data:") else value


def rows(table):
    texts = {"function": data["functions"], "site": data["sites"], "call": data["texts"]}
    return [{name: texts[name][value] if name in texts and isinstance(value, int) else value
             for name, value in zip(table["columns"], row)} for row in table["rows"]]


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        chrome = webdriver.ChromeOptions()
        for argument in ["--headless=new", "--disable-dev-shm-usage"] + ["--no-sandbox"] * (os.geteuid() == 0):
            chrome.add_argument(argument)
        chrome.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.browser = webdriver.Chrome(options=chrome)
        cls.addClassCleanup(cls.browser.quit)

    def tearDown(self):
        self.assertEqual([], self.browser.get_log("browser"), "messages on the console")
        self.assertEqual([], self.script("return performance.getEntriesByType('resource').map(one => one.name)"
                                         ".filter(name => !name.startsWith('data:'))"), "loaded from elsewhere")

    def open(self, path=options.page, address="", width=1400, dark=False):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                     {"width": width, "height": 800, "deviceScaleFactor": 1, "mobile": False})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})
        self.browser.get("about:blank")
        self.browser.get("file://" + os.path.abspath(path) + address)
        self.until(lambda: self.script("return document.documentElement.dataset.ready"), "ready")

    def until(self, condition, what):
        end = time.time() + 15
        while not condition():
            self.assertLess(time.time(), end, what)
            time.sleep(0.05)

    def script(self, text, *arguments):
        return self.browser.execute_script(text, *arguments)

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def all(self, selector):
        return [one for one in self.browser.find_elements(By.CSS_SELECTOR, selector) if one.is_displayed()]

    def go(self, section):
        self.script("location.hash = arguments[0]", section)
        self.until(lambda: self.script("return document.querySelector('nav [aria-current]')?.hash") == "#" + section, section)

    def sections(self):
        return [link.get_attribute("href").split("#")[1] for link in self.browser.find_elements(By.CSS_SELECTOR, "nav a")]

    def table(self, label):
        """What a table shows on all its pages: a dictionary by heading for each row."""
        return self.script("""const table = document.querySelector(`table[aria-label="${arguments[0]}"]`);
            if (!table?.tHead || !table.checkVisibility())
                return [];
            $(table).DataTable().page.len(-1).draw();
            return [...table.tBodies[0].rows].filter(row => !row.querySelector(".dataTables_empty")).map(row => Object.fromEntries(
                [...row.cells].map((cell, column) => [table.tHead.rows[0].cells[column].textContent, cell.textContent])));""", label)

    def testShowsTheNumbersOfTheData(self):
        expect = json.loads(pathlib.Path(options.expect).read_text()) if options.expect else {
            "frames": data["overview"]["frames"], "calls": data["overview"]["calls"], "functions": {},
            "errors": [[row["site"], row["error"], row["count"]] for row in rows(data["errors"])]}
        self.open()
        text = self.all("section.overview")[0].text
        for wanted in [f"{expect['calls']:,} call", f"{expect['frames']:,} frame"] + data["leftOut"]:
            self.assertIn(wanted, text)
        self.go("errors")
        self.assertCountEqual([(site or "place unknown", error, f"{count:,}") for site, error, count in expect["errors"]],
                              [(row["Line"], row["Error"], row["Count"]) for row in self.table("Errors")])
        self.go("functions")
        shown = {row["Function"]: row["Count"] for row in self.table("Calls by function")}
        for name, count in expect["functions"].items():
            self.assertEqual(f"{count:,}", shown.get(name), name)
        self.go("frames")
        self.assertEqual([f"{calls:,}" for calls in data["frames"]["calls"]], [row["Calls"] for row in self.table("Frames")])
        self.go("unchanged")
        left = data["unchanged"]["left"]
        self.assertEqual([f"{left:,} row"] * (left > 0), [one.text[:len(f"{left:,} row")] for one in self.all(".unchanged .left")])

    def testShowsTheFrameThatIsChosen(self):
        count = len(data["frames"]["calls"])
        detail = next(iter(data["frames"]["details"]))
        self.open(address="#frame=" + detail)
        self.assertEqual({row["function"]: f"{row['count']:,}" for row in rows(data["frames"]["details"][detail]["functions"])},
                         {row["Function"]: row["Count"] for row in self.table("Calls of the frame by function")})
        self.open(address=f"#frame={count}")
        shows = lambda frame: self.all(".detail h3")[0].text .startswith(f"Frame {frame:,} of {count:,}")
        self.assertTrue(shows(count))
        for key, frame in (Keys.ARROW_LEFT, max(1, count - 1)), (Keys.ARROW_RIGHT, count):
            self.press(key)
            self.until(lambda: shows(frame), "an arrow key")
        thumbnail = self.all(".thumbnail")[0]
        chosen = int(thumbnail.get_attribute("href").split("=")[1])
        thumbnail.click()
        self.until(lambda: shows(chosen), "a thumbnail")
        plot = self.all(".plot")[0]
        ActionChains(self.browser).move_to_element_with_offset(plot, plot.size["width"] // 2 - 12, -20).click().perform()
        self.until(lambda: shows(count), "a click at the chart's end")

    def testSortsByValueAndFiltersByWords(self):
        self.open(address="#functions")
        header = {one.text: one for one in self.all(".functions th")}
        header["Function"].click()
        for order, down in ("descending", True), ("ascending", False):
            header["Count"].click()
            self.until(lambda: header["Count"].get_attribute("aria-sort") == order, order)
            shown = [int(row["Count"].replace(",", "")) for row in self.table("Calls by function")]
            self.assertEqual(sorted(shown, reverse=down), shown)
        names = lambda: {row["Function"] for row in self.table("Calls by function")}
        wanted = {name for name in names() if "v" in name.lower() and "er" in name.lower()}
        self.all(".functions input")[0].send_keys("V ER")
        self.until(lambda: names() == wanted, wanted)

    def testSearchesAllTables(self):
        searched = {"errors": "Errors", "unchanged": "Changed nothing", "stalls": "Stalls", "textures": "Textures", "lists": "Display lists"}
        site = next(row["site"] for name in searched for row in rows(data[name]) if row["site"])
        self.open()
        self.press("/", site.upper())
        self.until(lambda: "section" in self.browser.find_element(By.ID, "found").text, "results")
        for name, label in searched.items():
            found = [row for row in rows(data[name]) if any(site in value for value in row.values() if isinstance(value, str))]
            self.assertEqual(len(found), len(self.table(label)), name)
        self.press(Keys.ESCAPE)
        self.until(lambda: self.all("section.overview") and len(self.all("main > section")) == 1, "the overview again")
        self.open(address="#find=no+such+text")
        self.assertEqual("nothing found", self.all("#found")[0].text)

    def testWorksByKeyboardAlone(self):
        focused = lambda: self.browser.switch_to.active_element

        def tab_to(selector):
            for _ in range(200):
                self.press(Keys.TAB)
                self.assertNotEqual("none", self.script("return getComputedStyle(document.activeElement).outlineStyle"), "visible focus")
                if self.script("return document.activeElement.matches(arguments[0])", selector):
                    return
            self.fail(selector + " is not reached")
        self.open()
        tab_to("#skip")
        tab_to('nav a[href="#functions"]')
        self.press(Keys.ENTER)
        self.until(lambda: self.all("section.functions"), "the section")
        tab_to(".functions th")
        for key, order in (Keys.ENTER, "ascending"), (Keys.SPACE, "descending"):
            self.press(key)
            self.until(lambda: focused().get_attribute("aria-sort") == order, order)
        self.go("textures")
        tab_to(".card")
        self.press(Keys.ENTER)
        self.until(lambda: self.all("dialog h2"), "the texture, larger")
        self.press(Keys.ESCAPE)
        self.until(lambda: not self.all("dialog") and focused().get_attribute("class") == "card", "back at the picture")

    def testFitsSmallScreensAndIsLegibleInBothColours(self):
        contrast = """const light = colour => { const [r, g, b] = colour.match(/[\\d.]+/g).map(one => one / 255)
                .map(one => one <= 0.03928 ? one / 12.92 : ((one + 0.055) / 1.055) ** 2.4); return 0.2126 * r + 0.7152 * g + 0.0722 * b; };
            const paper = one => { const colour = getComputedStyle(one).backgroundColor; return /, 0\\)/.test(colour) ? paper(one.parentNode) : light(colour); };
            const ratio = (a, b) => (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
            return [paper(document.body), ...[...document.querySelectorAll("main :is(p, a, td, th, dt, li, span), nav :is(a, span), header *")]
                .filter(one => one.checkVisibility() && one.innerText).map(one => ratio(light(getComputedStyle(one).color), paper(one)))];"""
        for width, dark in (1400, False), (1400, True), (360, False), (360, True):
            self.open(width=width, dark=dark)
            for section in ["find=gl"] + self.sections() + ["frame=1"]:
                with self.subTest(section, width=width, dark=dark):
                    self.script("location.hash = arguments[0]", section)
                    shown = ".searching > section" if "find" in section else f"section.{section.replace('=1', 's')}"
                    self.until(lambda: self.all(shown), "shown")
                    self.assertLessEqual(self.script(OVERFLOW), 0)
                    paper, *ratios = self.script(contrast)
                    self.assertEqual(dark, paper < 0.2)
                    self.assertGreaterEqual(min(ratios), 4.5)
                    if options.screenshots:
                        self.browser.save_screenshot(f"{options.screenshots}/{section.replace('=', '')}-{width}-{'dark' if dark else 'light'}.png")
        self.browser.find_element(By.CSS_SELECTOR, "#theme option:nth-child(2)").click()
        self.assertGreater(self.script(contrast)[0], 0.8, "the switch says light, the system dark")

    def testBreaksPathsThatAreWiderThanTheScreen(self):
        self.open(page_with("wide", each_text(data, lambda text: "/" + 20 * "folder_of_sources/" + text)), width=360)
        for section in ["find=folder"] + self.sections() + ["frame=1", "texture=0", "program=0", "shader=0"]:
            with self.subTest(section):
                self.script("location.hash = arguments[0]", section)
                time.sleep(0.2)
                self.assertLessEqual(self.script(OVERFLOW), 0)

    def testHostileTextIsText(self):
        labels = [row["label"] for table in tables(data) for row in rows(table) if "<" in str(row.get("label"))]
        self.assertEqual(options.hostile, bool(labels))
        frame = max(data["frames"]["details"].items(), key=lambda one: len(one[1]["uploads"]["rows"]))[0]
        for path, wanted in [(page_with("hostile", each_text(data, lambda text: text + HOSTILE)), [HOSTILE])] + [(options.page, labels)] * options.hostile:
            self.open(path)
            scripts = self.script("return document.scripts.length")
            shown = ""
            for section in self.sections() + ["frame=" + frame, "texture=0", "program=0", "shader=0", "find=img"]:
                self.script("location.hash = arguments[0]", section)
                time.sleep(0.2)
                shown += self.script("return document.body.textContent.replace(document.getElementById('report').textContent, '')")
                self.assertEqual([0, scripts], self.script("return [document.querySelectorAll('img[src=x]').length, document.scripts.length]"), section)
                self.assertNotEqual("owned", self.browser.title, section)
            for text in wanted:
                self.assertIn(text, shown)

    def testSaysWhatThereIsNot(self):
        empty = copy.deepcopy(data)
        for table in tables(empty):
            table["rows"] = []
        empty["frames"] = {key: {} if isinstance(value, dict) else None for key, value in empty["frames"].items()}
        empty["overview"].update(frames=0, calls=0, errors=0, processor=None, driverTime=None, gpu=None, picture=None)
        empty["leftOut"] = []
        self.open(page_with("empty", empty))
        for section in self.sections():
            self.go(section)
            self.assertTrue(self.all(f"section.{section} .nothing"), section)

    def openTimed(self, path, what):
        start = time.time()
        self.open(path)
        print(f"{what}, {os.path.getsize(path) / 2 ** 20:.1f} MiB: open after {time.time() - start:.2f} s", file=sys.stderr)

    def testOpens(self):
        self.open() # the browser's own start
        self.openTimed(options.page, "the page")

    def testOpensManyFrames(self):
        many, count = copy.deepcopy(data), 2000
        for key, value in data["frames"].items():
            if isinstance(value, dict):
                step, values = 1 if key == "details" else 5, list(value.values())
                many["frames"][key] = {str(1 + place * step): values[place % len(values)] for place in range(count // step)}
            elif isinstance(value, list):
                many["frames"][key] = (value * count)[:count]
        many["overview"]["frames"] = count
        many["textures"]["rows"] = (data["textures"]["rows"] * count)[:count]
        self.openTimed(page_with("many", many), "2,000 frames")
        self.go("frames")
        self.assertEqual(count, len(self.table("Frames")))
        self.go("textures")
        pictures = lambda: self.script("const grid = document.querySelector('.grid'); grid.scrollTop = 1e9; return grid.children.length")
        self.until(lambda: pictures() == count, "all textures")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + of_unittest, verbosity=2)
