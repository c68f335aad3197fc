# SPDX-License-Identifier: MIT
"""report.html: says first what a reader must know, shows every value, and runs nothing of what it shows."""
import json
import os
import re
import socket
import sqlite3
import subprocess
import threading
import unittest

import html5lib

from export_case import TABLES, export_case

CANARY = "document.documentElement.dataset.canary=1"
MAY = 1556712000  # 2019-05-01 12:00:00 UTC


def hostile(port):
    """Whatever of these gets out of its text runs, or is asked for."""
    url = f"http://127.0.0.1:{port}/"
    return (f"</td></tr></table></script></style></title><script>{CANARY}</script><img src={url}i onerror={CANARY}>"
            f"\"onmouseover={CANARY} ' autofocus onfocus={CANARY}<svg onload={CANARY}><a href=javascript:{CANARY}>"
            f"<link rel=stylesheet href={url}l><style>@import url({url}s);*{{background:url({url}b)}}</style>"
            f"<iframe src={url}f></iframe><base href={url}><meta http-equiv=refresh content=0;url={url}m>&lt;b&gt;"
            "<!--\u202egpj.exe\u2069 in\u200bvisi\ufeffble \x1b[31m \0 ]]>")


def shown(text):
    """The text as the report shows it."""
    return re.sub("[\0-\x08\x0b-\x1f\x7f-\x9f\u200b\u202a-\u202e\u2066-\u2069\ufeff]",
                  lambda found: ("\\x%02x" if ord(found[0]) < 256 else "\\u%04x") % ord(found[0]), text)


class listener:
    """Answers no request, and counts them."""

    def __enter__(self):
        self.requests = 0
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.port = self.socket.getsockname()[1]
        self.thread = threading.Thread(target=self.accept)
        self.thread.start()
        return self

    def accept(self):
        try:
            while True:
                self.socket.accept()[0].close()
                self.requests += 1
        except OSError:  # closed
            pass

    def __exit__(self, *_):
        self.socket.shutdown(socket.SHUT_RDWR)
        self.thread.join()
        self.socket.close()


class report(export_case):
    def make(self, *options):
        self.export("html", *options)
        page = self.content("report.html").decode()
        self.document = html5lib.HTMLParser(strict=True, namespaceHTMLElements=False).parse(page)  # raises on any error
        return page

    def text(self, element):
        for cut in element.findall(".//p[@class='cut']"):  # of long texts: how long they are
            cut.text = ""
        return "".join(element.itertext())

    def section(self, name):
        return self.document.find(f".//section[@id='{name}']")

    def cells(self, table):
        """Of each row: heading -> text."""
        rows = []
        for page in self.section(table).iterfind(".//details[@class='page']"):
            heads = [self.text(head) for head in page.iterfind(".//thead//th")]
            rows += [dict(zip(heads, map(self.text, row))) for row in page.iterfind(".//tbody/tr")]
        return rows

    def write_record(self, **changes):
        record = {"exit_code": 0, "outcome": "complete", "tables": TABLES, "rows_added": 0, **changes}
        with open(self.own_folder + "/run.json", "w", encoding="utf-8") as file:
            json.dump(record, file)

    def browse(self, file, *options):
        chrome = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
                  "--user-data-dir=" + self.base + "/chromium", *options, "--dump-dom", "file://" + file]
        answer = subprocess.run(chrome, capture_output=True, text=True, timeout=120)
        self.assertIn("</html>", answer.stdout, answer.stderr)
        return answer.stdout

    def write_links(self, rows, not_shown=()):
        links = sqlite3.connect(self.own_folder + "/Cortana_links.sqlite", isolation_level=None)
        links.execute("create table reminder_links(table_name,INT,reminder_link,why,linked_title,linked_text,"
                      "linked_creation_time,linked_last_update_time,linked_last_access_time,linked_completion_time)")
        links.execute("create table reminders_not_shown(system_user,title,creation_time)")
        links.executemany("insert into reminder_links values(?,?,?,?,?,?,?,?,?,?)", rows)
        links.executemany("insert into reminders_not_shown values(?,?,?)", not_shown)
        links.close()

    def fill_with(self, text):
        for table in TABLES:
            columns = [name for name in self.columns(table) if name not in ("INT", "bookmark")]
            self.insert(table, [{column: f"{column} {text}" for column in columns}])
        self.write_links([("time_reminders", 1, "contradicted", text, "linked " + text, text, 0, 0, 0, 0),
                          ("place_reminders", 1, "undecided", text, None, None, None, None, None, None)],
                         [("anna", text, MAY)])
        self.database.execute("create table sources(source text,id text)")
        self.insert("sources", [{"source": "Source1", "id": text}])
        self.write_record(source=text, outcome=text, arguments=[text], problems=[{"path": text, "reason": text}],
                          could_not_read=1, note_count=1, notes=[{"path": text, "reason": text}], failures=1,
                          first_failures=[text], losses=[{"profile": text, "table": text, "file": text, "reason": text}],
                          evidence=[{"path": text, "kind": text, "sha256": text, "problem": text, "notes": [text]}],
                          libraries={text: text}, machine={text: text}, version=text)

    def test_nothing_of_the_evidence_runs(self):
        with listener() as web:
            text = hostile(web.port)
            self.fill_with(text)
            self.export("html")
            dom = self.browse(self.path("report.html"))
        self.assertEqual(web.requests, 0)
        self.assertNotIn("data-canary=", dom)
        self.assertIn('class="tools"', dom)  # its own script ran
        tree = html5lib.parse(dom, namespaceHTMLElements=False)
        self.assertEqual([element.tag for element in tree.iter() if element.tag in ("img", "link", "iframe", "base", "object")], [])
        self.assertEqual((len(tree.findall(".//script")), len(tree.findall(".//style"))), (1, 1))
        for element in tree.iter():
            for name, value in element.attrib.items():
                self.assertFalse(name.startswith("on") or "gpj" in value, (element.tag, name, value))
                if name == "href":
                    self.assertRegex(value, "^(#|https://www[.]openstreetmap[.]org/[?]mlat=[-0-9.e]+&mlon=[-0-9.e]+$)")
        self.assertIsNone(re.search("[\u200b\u202e\ufeff]", self.make()))
        self.every_value_is_shown(shown(text))

    def every_value_is_shown(self, text):
        for table in TABLES:
            whole = self.text(self.section(table))
            for column in self.columns(table):
                if column not in ("INT", "bookmark"):
                    with self.subTest(table=table, column=column):
                        self.assertIn(f"{column} {text}", whole)
        self.assertEqual(self.cells("time_reminders")[0]["title"], f"linked {text}" + f"by position title {text}")
        for name in ("first", "not-shown", "sources", "evidence", "run"):
            self.assertIn(text, self.text(self.section(name)), name)

    def test_policy_holds_without_escaping(self):
        self.insert("searches", [{"search_keyword": "a"}])
        self.make()
        with listener() as web:
            inside = hostile(web.port).replace("<meta", "<p")
            with open(self.base + "/broken.html", "w", encoding="utf-8") as file:
                file.write(self.content("report.html").decode().replace("</main>", inside))
            dom = self.browse(self.base + "/broken.html")
        self.assertEqual(web.requests, 0)
        self.assertIn("onload=", dom)
        self.assertNotIn("data-canary=", dom)

    def test_what_must_be_known_first(self):
        finding = [{"path": "/Users/anna/x.dat", "reason": "its checksum is wrong"}]
        loss = [{"profile": "anna", "table": "cookies", "file": "", "reason": "SIGSEGV"}]
        gap = "does not show that there was no data"
        for changes, expected in (
                ({}, ["read to its end", "holds none"]),
                ({"tables": ["cookies"]}, ["read to its end", "was not selected"]),
                ({"exit_code": 4}, ["found nothing", "holds none"]),
                ({"could_not_read": 5, "problems": finding}, [gap, "x.dat: its checksum is wrong", "lists 1 of 5"]),
                ({"could_not_read": 14, "problems": finding * 14}, [gap, "2 more"]),
                ({"losses": loss}, [gap, "1 step was not finished", "profile anna, cookies: SIGSEGV"]),
                ({"failures": 2, "first_failures": ["q FAILED"]}, [gap, "2 failures", "q FAILED"]),
                ({"exit_code": 130, "outcome": "cancelled"}, [gap, "did not come to its end", "cancelled"]),
                ({"exit_code": 5, "output_troubles": ["disk full"]}, [gap, "disk full"]),
                ({"not_examined": ["bernd"]}, [gap, "1 profile was not examined", "bernd"]),
                ({"note_count": 1, "notes": finding}, ["read to its end", "x.dat: its checksum is wrong"]),
                ({"written": [{"path": "/old/Cortana.sqlite", "sha256": "0" * 64}]}, ["not as the run left it"]),
                ({"rows_added": 7}, ["the last run only"]),
                ({"tables": 5, "problems": 5, "losses": {}, "could_not_read": "x"}, ["read to its end", "not selected"]),
                (None, ["There is no run record", gap])):
            with self.subTest(changes):
                if changes is None:
                    os.remove(self.own_folder + "/run.json")
                else:
                    self.write_record(**changes)
                self.export("html", "--tables", "searches")
                page = self.content("report.html").decode()
                text = re.sub("<[^>]*>", "", page[page.index("<main"):page.index('id="places"')])
                for words in expected:
                    self.assertIn(words, text)
                self.assertEqual(gap in text, gap in expected)
        self.write_record()
        with open(self.own_folder + "/run-1.json", "w", encoding="utf-8"):
            pass
        self.export("html", "--tables", "searches")
        self.assertIn(b"the last run only", self.content("report.html"))

    def test_merged_sources(self):
        self.database.execute("create table sources(source text,id text,outcome text)")
        gap = "does not show that there was no data"
        for outcome, expected in (("complete", False), ("nothing found", False), ("finished with failures", True),
                                  ("missing", True)):
            with self.subTest(outcome):
                self.insert("sources", [{"source": "Source1", "id": "laptop", "outcome": outcome}])
                self.make()
                first = self.text(self.section("first"))
                self.assertIn(outcome + ": 1", first)
                self.assertEqual(gap in first and gap in self.text(self.section("searches")), expected)
                self.assertIn("laptop", self.text(self.section("sources")))
                self.database.execute("delete from sources where outcome like '%n%f%' or outcome='missing'")

    def test_reminders_by_their_ids(self):
        row = {"title": "P", "text": "p", "creation_time": MAY, "completion_time": MAY}
        for table in TABLES[:3]:
            self.insert(table, [row] * 5)
        same = ("P", "p", MAY, None, None, MAY)
        self.write_links([("time_reminders", 1, "confirmed", None, *same),
                          ("place_reminders", 2, "contradicted", None, "L", "p", MAY + 1, 0, 0, 0),
                          ("contact_triggers", 3, "undecided", "an id is missing", *[None] * 6)])
        self.make()
        noon = "2019-05-01 12:00:00+00:00"
        names = ("by the ids", "title", "text", "creation time", "completion time")
        for table, number, expected in (
                ("time_reminders", 1, ("✓ confirmed", "P", "p", noon, noon)),
                ("place_reminders", 2, ("✗ contradicted", "Lby position P", "p", f"2019-05-01 12:00:01+00:00by position {noon}",
                                        f"by position {noon}")),
                ("contact_triggers", 3, ("? undecided an id is missing", "by position P", "by position p",
                                         f"by position {noon}", f"by position {noon}")),
                ("time_reminders", 4, ("– not looked at", "by position P", "by position p", f"by position {noon}",
                                       f"by position {noon}"))):
            with self.subTest(table=table, row=number):
                cells = self.cells(table)[number - 1]
                self.assertEqual(tuple(cells[name] for name in names), expected)
        first = self.text(self.section("first"))
        for words in ("contradict 1 reminder row", "Of 1 reminder row", "12 reminder rows were not looked at"):
            self.assertIn(words, first)
        os.remove(self.own_folder + "/Cortana_links.sqlite")
        self.make()
        self.assertIn("were not checked", self.text(self.section("first")))

    def test_times_places_and_counts(self):
        self.insert("searches", [{"system_user": "anna", "search_timestamp": value} for value in
                                 (MAY, 0, None, "", "soon", 99999999999999, -3 * 86400)])
        self.insert("graphed_cache", [{"latitude": "48.1", "longitude": "-11.5"}, {"latitude": "91", "longitude": "0"},
                                      {"phone": "1"}])
        self.make("--time-zone", "Asia/Kolkata")
        self.assertEqual([row["search timestamp"] for row in self.cells("searches")],
                         ["2019-05-01 12:00:00+00:002019-05-01 17:30:00+05:30", "", "", "", "no time: soon",
                          "no time: 99999999999999", "1969-12-29 00:00:00+00:001969-12-29 05:30:00+05:30"])
        self.assertEqual([row["latitude, longitude"] for row in self.cells("graphed_cache")], ["48.1, -11.5 map", "91, 0 invalid", ""])
        places = self.section("places")
        self.assertEqual(len(places.findall(".//{http://www.w3.org/2000/svg}circle")), 1)
        self.assertIn("1 row with invalid coordinates", self.text(places))
        counts = [self.text(cell) for cell in self.section("rows").findall(".//tbody/tr")[-1]]
        self.assertEqual(counts[1:], ["anna", "0", "0", "0", "0", "0", "0", "0", "0", "7", "7"])
        bars = [self.text(bar) for bar in self.section("activity").iterfind(".//{http://www.w3.org/2000/svg}rect")]
        self.assertEqual(sum(int(bar.split(": ")[1].split()[0]) for bar in bars), 2)
        heads = [self.text(head) for head in self.section("activity").iterfind(".//thead//th")]
        self.assertEqual(heads, ["days", "searches"])  # of tables with times only

    def test_more_days_than_are_counted_singly(self):
        self.database.execute("with recursive n(i) as (select 1 union all select i+1 from n where i<10001) insert into searches"
                              "(bookmark,search_timestamp) select 0,i*86400 from n")
        self.export("html", "--tables", "searches")
        numbers = self.content("report.html").decode().split('class="numbers"')[1].split("</table>")[0]
        self.assertEqual(sum(int(count.replace(",", "")) for count in re.findall("<td>([0-9,]+)", numbers)), 10001)
        rows = re.findall('<th scope="row">(.{10}) to (.{10})', numbers)
        self.assertTrue(rows[0][0] <= "1970-01-02" and rows[-1][0] <= "1997-05-20" <= rows[-1][1], rows)

    def test_sorting_and_filtering_over_all_pages(self):
        self.insert("searches", [{"search_keyword": f"word {i % 700}", "search_timestamp": MAY + i} for i in range(1200)])
        page = self.make()
        self.assertEqual([self.text(summary) for summary in self.section("searches").iterfind("details[@class='page']/summary")],
                         ["Rows 1–500 of 1,200", "Rows 501–1,000 of 1,200", "Rows 1,001–1,200 of 1,200"])
        drive = ("<script>const s=document.getElementById('searches'),[f]=s.querySelectorAll('input'),[c,d]=s.querySelectorAll('select');"
                 "c.value=2;c.dispatchEvent(new Event('change'));d.value='down';d.dispatchEvent(new Event('change'));"
                 "const first=s.querySelector('tbody tr').cells[0].textContent;f.value='word 69';f.dispatchEvent(new Event('input'));"
                 "setTimeout(()=>document.body.dataset.seen=first+' '+s.querySelector('summary').textContent+' '+"
                 "s.querySelectorAll('details.page:not([hidden]) tbody tr').length,1000)</script>")
        free = re.sub("<meta http-equiv=\"Content-Security-Policy\"[^>]*>", "", page).replace("</body>", drive + "</body>")
        with open(self.base + "/driven.html", "w", encoding="utf-8") as file:
            file.write(free)
        seen = re.search('data-seen="([^"]*)"', self.browse(self.base + "/driven.html", "--virtual-time-budget=3000"))
        # 69 and 690 to 699: twice 69, once each of the others
        self.assertEqual(seen and seen[1], "1200 Rows 1–12 of 12 12")


unittest.main()
