"""The reference host's commands, called as a user calls them, on either home."""
import json
import os
import pathlib
import random
import re
import subprocess
import xml.etree.ElementTree as ElementTree

import host_calls
from host_calls import HostTest, native


class WrongUse(HostTest):
    def test_each_mistake_has_its_sentence(self):
        self.refuse((1, "frobnicate", "frobnicate"), (1, "download --speed 9", "--speed"), (1, "download --out x.odb", "--port"),
                    (1, "download --port COM1 --out", "--out"), (1, "download --port COM1 --out x.odb --count 0", "--count"), (1, "show --csv --csv x", "twice"),
                    (1, "show one more", "more"), (1, "show", "FILE"), (1, "download --port COM1 --out x.odb --hex", "--trace"),
                    (1, "download --port COM1 --out x.odb --trace ./x.odb", "same file"), (1, "demo --out ''", "--out"), (1, "dwnload", "mean download"), (1, "show x --chanel a", "mean --channel"))
        self.assertIn("There is no file \u4e2d.odb", self.refused(3, "show", "\u4e2d.odb"))

    @native("Windows has no device that is always full")
    def test_output_that_cannot_be_written_is_no_success(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run(self.command("--help"), env=self.environment(), stdout=full, stderr=subprocess.PIPE, encoding="utf-8")
        self.assertEqual(done.returncode, 3, done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), 1)

    def test_help_tells_every_option_in_both_languages(self):
        told = {}
        for language in ("C", "sv_SE.UTF-8"):
            overview = self.done("--help", language=language).out
            told[language] = {name: self.done(name, "--help", language=language).out for name in re.findall(r"^  orvikhost (\w+)", overview, re.M)}
            for name, text in [("", overview), *told[language].items()]:
                self.assertEqual([line for line in text.splitlines() if len(line) > 80], [], name)
                self.assertTrue(re.match(f"orvikhost {name}\\b" if name else "orvikhost:", text), text)
        options = {language: {name: set(re.findall(r"^  (--[\w-]+)", text, re.M)) for name, text in texts.items()} for language, texts in told.items()}
        self.assertEqual(options["C"], options["sv_SE.UTF-8"])
        for source in sorted((pathlib.Path(__file__).parents[2] / "host/command_line").glob("*.cpp")):
            text = source.read_text(encoding="utf-8")
            names = [name.lower() for name in re.findall(r"^ExitCode Run(\w+)\(", text, re.M)] or (["show"] if source.stem == "show_options" else [])
            for option in re.findall(r'"(--[\w-]+)"', text) if names else []:
                self.assertTrue(any(option in options["C"][name] for name in names), f"{source.name}: {option} is not in the help of {names}")
        for words in (["show", "x.odb", "--help"], ["help", "show"]):
            self.assertEqual(self.done(*words).out, told["C"]["show"])
        self.assertRegex(self.done("--version").out, r"^orvikhost \d+\.\d+\.\d+$")

    def test_swedish_users_read_swedish(self):
        sentence = self.refused(1, "frobnicate", language="sv_SE.UTF-8")
        self.assertIn("är inget kommando", sentence)
        self.assertIn("Slutkoder", self.host("--help", language="sv_SE.UTF-8").out)
        self.assertIn("Exit codes", self.host("--help", language="C").out)


class Recordings(HostTest):
    def make(self, name, *words):
        done = subprocess.run([*([host_calls.options.wine] if host_calls.options.wine else []), host_calls.options.maker, name, *map(str, words)], cwd=self.folder, env=self.environment(), timeout=120)
        self.assertEqual(done.returncode, 0)

    def keep_open(self, name, *words):
        """A recording that grows by a reading for every line written to the process that this gives."""
        maker = subprocess.Popen([*([host_calls.options.wine] if host_calls.options.wine else []), host_calls.options.maker, name, *map(str, words), "more"], cwd=self.folder,
                                 env=self.environment(), stdin=subprocess.PIPE, stdout=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(maker.stdout.close)
        self.addCleanup(maker.communicate, "end\n")
        self.grow(maker)
        return maker

    def grow(self, maker):
        maker.stdin.write("one\n")
        maker.stdin.flush()
        self.assertEqual(maker.stdout.readline().strip(), "made")

    def test_every_form_holds_the_same(self):
        self.make("a.rec", 120, 3, "gap", 60, 20, "ended")
        rows, gaps = self.readings("a.rec"), self.done("show", "a.rec", "--gaps").out
        self.assertEqual(rows[0], ["time", "Channel 0 [°C]", "Channel 1 [%]", "Channel 2 [°C]"])
        self.assertEqual(len(rows), 102)  # the gap's row stands for 20
        self.assertEqual([row[1:] for row in rows if row[0].endswith("20:27:40.000000Z")], [["", "", ""]])
        self.assertEqual(rows[1][2], "")
        self.assertEqual(len(gaps.splitlines()), 3)
        self.assertRegex(gaps, r"missing: 20 readings, attempts: 60, Receive timeout \(no answer; none\)")
        # By way of each other; a ";" would part a text of the XML form.
        for origin, target in [("a.rec", "b.odb"), ("b.odb", "c.xml"), ("c.xml", "d.rec"), ("d.rec", "e.xml"), ("e.xml", "f.odb"), ("a.rec", "g.rec")]:
            self.done("convert", origin, target)
            self.assertEqual(self.readings(target), rows, target)
            self.assertEqual(self.done("show", target, "--gaps").out, gaps if target == "g.rec" else gaps.replace("; none", ", none"))
        self.assertEqual(self.host("db", "list", "b.odb").out, self.host("db", "list", "f.odb").out)
        self.done("convert", "d.rec", "h.csv")
        self.done("convert", "h.csv", "i.odb")
        self.assertEqual(self.readings("i.odb"), rows)
        local = self.done("show", "a.rec", "--csv", "--local", language="sv_SE.UTF-8").out
        self.assertEqual(local.splitlines()[3].split(";")[1:], ["0,25", "0,375", "0,5"])
        (self.folder / "l.csv").write_text(local, encoding="utf-8")
        self.done("convert", "l.csv", "m.odb")
        self.assertEqual(self.readings("m.odb"), rows)
        # As an editor leaves it, without the mark and with a minus of print.
        (self.folder / "n.csv").write_text(local.lstrip("\ufeff").replace(";0,375;", ";\u22120,375;", 1), encoding="utf-8")
        self.done("convert", "n.csv", "n.odb")
        self.assertEqual([row[:2] for row in self.readings("n.odb")], [row[:2] for row in rows])
        self.assertEqual(self.readings("n.odb")[3][2], "-0.375")
        (self.folder / "n.csv").write_text("time;a\n2026-05-28 20:26:40,000;1,5x\n", encoding="utf-8")
        self.assertIn('"1,5x"', self.refused(3, "convert", "n.csv", "p.odb"))
        before = (self.folder / "b.odb").read_bytes()
        self.assertIn("--force", self.refused(3, "convert", "a.rec", "b.odb"))
        self.assertIn("same file", self.refused(1, "convert", "a.rec", "./a.rec"))
        self.assertIn(".xml", self.refused(1, "convert", "a.rec", "a.txt"))
        self.assertEqual((self.folder / "b.odb").read_bytes(), before)
        self.done("convert", "h.csv", "b.odb", "--force")

    def test_faults_in_text_have_their_line(self):
        head = "time,a [b]\n2026-05-28T20:26:40.000000Z,1\n"
        for text, line in [("", 0), ("x,y\n", 1), (head + "2026-05-28T20:26:41Z,1,2\n", 3), (head + "2026-05-28,1\n", 3), (head + "2026-05-28T20:26:39Z,1\n", 3),
                           (head + "\n2026-05-28T20:26:41Z,1;2\n", 4), (head + '2026-05-28T20:26:41Z,"1\n', 3), ("time,\udcce\n", 1)]:
            (self.folder / "a.csv").write_bytes(text.encode(errors="surrogateescape"))
            self.assertIn(f"line {line}:", self.refused(3, "convert", "a.csv", "a.odb"))
            self.assertFalse((self.folder / "a.odb").exists())

    def test_recover_folds_what_a_killed_download_left(self):
        self.make("a.odb.rec", 50, 2, "gap", 20, 5)
        with open(self.folder / "a.odb.rec", "ab") as file:
            file.write(b"\xD7\x4F\x02\0\x1A")  # a block that was being written
        result = self.done("show", "a.odb", "--csv")
        self.assertIn("opened a.odb.rec", result.err)
        self.make("b.rec", 10, 2)
        said = self.done("recover", "a.odb").out
        self.assertIn("45 readings and 1 gap ", said)
        self.assertIn("5 bytes", said)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["a.odb", "b.rec"])
        self.assertEqual(self.done("show", "a.odb", "--csv").out, result.out)
        self.assertIn("no recording", self.refused(3, "recover", "a.odb"))
        self.done("recover", "b.rec")
        self.assertTrue((self.folder / "b.rec").exists())
        self.assertIn("--force", self.refused(3, "recover", "b.rec"))
        self.make("a.odb.rec", 3, 2)
        self.assertIn("`orvikhost recover a.odb`", self.done("show", "a.odb").err)
        self.done("recover", "a.odb.rec", "--force")
        self.assertEqual(len(self.readings("a.odb")), 4)
        maker = self.keep_open("c.odb.rec", 2, 1)
        self.assertIn("stop it", self.refused(3, "recover", "c.odb"))
        self.assertIn("another name", self.host("chart", "c.odb", "--out", "c.svg", "--clear-tags", "--tag", "2026-05-28T20:26:41Z;0.1;x").err)
        self.grow(maker)
        self.assertFalse((self.folder / "c.odb").exists())

    def test_parts_of_a_session(self):
        self.make("a.rec", 100, 2, "gap", 90, 5)
        self.done("convert", "a.rec", "a.odb")
        for name in ("a.rec", "a.odb"):
            def rows(*words):
                return self.done("show", name, "--csv", *words).out.splitlines()[1:]
            self.assertEqual(len(rows("--from", "2026-05-28T20:27:00Z")), 76)
            self.assertEqual(len(rows("--from", "2026-05-28T20:27:00Z", "--to", "2026-05-28T20:27:09Z")), 10)
            self.assertEqual(len(rows("--last", "9.5 s")), 6)
            self.assertEqual([row.count(",") for row in rows("--channel", "c1", "--every", "40")][0], 1)
            self.assertEqual(len(rows("--every", "40", "--to", "2026-05-28T20:28:00Z")), 3)
            self.assertIn("5 readings are missing", self.host("show", name).err)
            lines = [json.loads(line) for line in self.done("show", name, "--json").out.splitlines()]
            self.assertEqual(lines[0], {"time": "2026-05-28T20:26:40.000000Z", "Channel 0": 0, "Channel 1": None})
            line = self.done("show", name, "--influx", "--channel", "c1").out.splitlines()[1]
            self.assertEqual(line, "orvik,logger=Inlet,channel=Channel\\ 1,id=c1,unit=% value=0.375 1780000002000000")
            self.assertEqual(self.done("show", name, "--csv", "--separator", "tab").out.splitlines()[0], "time\tChannel 0 [°C]\tChannel 1 [%]")
            table = self.done("show", name).out.splitlines()
            self.assertEqual({len(cell.split(".")[1]) for line in table[2:80] for cell in line.split()[3:]}, {4})
        for words in [("--csv", "--json"), ("--gaps", "--picture", "#"), ("--last", "1 s", "--to", "2026-05-28T20:28:00Z"), ("--separator", ";"), ("--local",),
                      ("--csv", "--separator", "ab"), ("--csv", "--separator", "."), ("--last", "soon"), ("--every", "0"), ("--channel", "x"), ("--follow", "--gaps")]:
            self.refused(1, "show", "a.rec", *words)
        self.assertIn("does not grow", self.refused(1, "show", "a.odb", "--follow"))

    def test_following_goes_on_into_the_next_file(self):
        self.make("a.rec", 2, 1, "next", "b.rec")
        maker = self.keep_open("b.rec", 2, 1)
        follower = subprocess.Popen(self.command("show", "a.rec", "--csv", "--follow"), cwd=self.folder, env=self.environment(), stdout=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(follower.stdout.close)
        lines = [follower.stdout.readline() for _ in range(6)]
        self.grow(maker)
        lines.append(follower.stdout.readline())
        self.assertEqual([line.split(",")[1].strip() for line in lines[1:]], ["0", "0.125", "0", "0.125", "0.25", "0.375"])
        maker.stdin.write("end\n")
        maker.stdin.flush()
        self.assertEqual(follower.wait(timeout=20), 0)

    def test_damage_is_told_and_costs_no_more(self):
        self.make("a.rec", 5000, 2)
        data = bytearray((self.folder / "a.rec").read_bytes())
        for at in (2000, 60000):
            data[at] ^= 1
        (self.folder / "a.rec").write_bytes(data)
        for words in (("show", "a.rec", "--csv"), ("convert", "a.rec", "a.odb")):
            result = self.host(*words)
            self.assertEqual(result.code, 3)
            self.assertIn("bytes of a.rec are damaged", result.err)
        self.assertEqual(len(self.readings("a.odb")), 1 + 5000, "two are lost, and rows mark their places")
        self.assertRegex(self.done("show", "a.odb", "--gaps").out, "(missing: 1 reading, .*damaged.*\n.*){2}")
        # Bytes that were taken out: the rest is kept, and told, also by who goes on behind it.
        self.make("c.rec", 500, 2)
        data = (self.folder / "c.rec").read_bytes()
        (self.folder / "d.odb.rec").write_bytes(data[:9000] + data[9003:])
        result = self.host("recover", "d.odb")
        self.assertEqual(result.code, 3)
        self.assertIn("d.odb.damaged.rec", result.err)
        self.assertEqual((self.folder / "d.odb.damaged.rec").read_bytes(), data[:9000] + data[9003:])
        (self.folder / "b.rec").write_bytes(b"ORVIKREC" + bytes(100))
        for words in (("show", "b.rec"), ("convert", "b.rec", "c.odb"), ("recover", "b.rec"), ("chart", "b.rec", "--out", "b.png")):
            self.assertIn("b.rec", self.refused(3, *words))


class Plugins(HostTest):
    def test_another_version_is_refused_by_name_and_version(self):
        folder = self.folder / "plugins"
        folder.mkdir()
        source = next((pathlib.Path(host_calls.options.host).parent / "plugins").glob("*.dll" if host_calls.options.wine else "*.so"))
        data = source.read_bytes()
        at = data.index(b"\x7fOrvikPlugin\x01\n") + 16
        self.assertTrue(data[at:].startswith(b"1.0.0\0"))
        # Of another family too, since the host finds its own plug-in of this one.
        (folder / source.name).write_bytes(data[:at] + b"0.9.7" + data[at + 5:at + 16] + b"Modbux" + data[at + 22:])
        name = "Z:" + str(folder) if host_calls.options.wine else str(folder)
        self.host("db", "set", "modbux.xml", "sFamily", "Modbux")
        sentence = self.refused(1, "check", "modbux.xml", ORVIK_PLUGINS=name)
        for word in (source.name, "0.9.7", "1.0.0"):
            self.assertIn(word, sentence)
        # One that is cut short behind its stamp is damaged, whatever the loader would make of it.
        (folder / source.name).write_bytes(data[:max(at + 64, len(data) // 2)])
        self.assertIn("cannot be loaded", self.refused(1, "download", "--port", "COM9", "--out", "s.odb", ORVIK_PLUGINS=name))
        # One that is missing is told with all folders and the families that are there.
        (folder / source.name).write_bytes(b"no plug-in at all")
        sentence = self.refused(1, "check", "modbux.xml", ORVIK_PLUGINS=name)
        for word in ("Modbux", self.folder.name, pathlib.Path(host_calls.options.host).parent.name, "found Modbus"):
            self.assertIn(word, sentence)


class Databases(HostTest):
    def test_names_of_any_letters_go_through_every_form(self):
        chosen = random.Random(20261122)
        scripts = ((0x21, 0x7E), (0xA1, 0x17F), (0x300, 0x30F), (0x370, 0x377), (0x5D0, 0x5EA), (0x621, 0x64A), (0x905, 0x939), (0x4E00, 0x4E80), (0x1F300, 0x1F380))
        names = []
        self.done("download", "--port", self.simulate(), "--count", 2, "--interval", 50, "--out", "s.odb")
        for channel in range(1, 6):
            letters = [chr(chosen.randint(*chosen.choice(scripts))) for _ in range(12)]
            names.append("n" + "".join(letters).replace(";", ",").replace("[", "(") + "n")
            for key, text in (("sName", names[-1]), ("sUnit", "Ω" + letters[0] if letters[0] not in ";[]" else "kΩ")):
                self.done("db", "set", "--", "s.odb", f"Channels.{channel}.{key}", text)
        forms = ("s.odb", "t.xml", "t.csv", "t.rec", "u.odb")
        for before, form in zip(forms, forms[1:]):
            self.done("convert", before, form)
            if form != "t.csv":
                self.assertEqual(list(json.loads(self.done("show", form, "--json").out.splitlines()[0]))[1:], names, form)
        self.assertEqual([p.text for p in ElementTree.parse(self.folder / "t.xml").iter("PROPERTY") if p.get("name") == "sName"][:5], names)

    def test_values_of_every_kind_come_back(self):
        for name in ("a.xml", "a.odb"):
            for key, kind, value in [("Text.s", "str", "mätvärde °C"), ("n.w", "u16", "1;2;65535"), ("n.d", "u32", "4294967295"),
                                     ("n.i", "i64", "-9223372036854775808"), ("n.f", "r32", "1.5"), ("n.r", "r64", "0.25;-1e+300")]:
                self.assertEqual(self.host("db", "set", name, key, value, "--kind", kind).code, 0)
                self.assertEqual(self.host("db", "get", name, key).out.rstrip("\r\n"), value)
            listed = self.host("db", "list", name).out.splitlines()
            self.assertEqual(len(listed), 6)
            self.assertIn("Text.s  str  mätvärde °C", listed)
            self.assertIn("6 values in 2 folders", self.host("db", "check", name).out)
            self.assertEqual(self.host("db", "remove", name, "n").code, 0)
            self.assertIn("1 value in 1 folder", self.host("db", "check", name).out)

    def test_reals_may_be_typed_in_the_users_format(self):
        for typed, stored in [("1,5;-2,5e3;1.5", "1.5;-2500;1.5"), ("1.234,5", "1234.5"), ("12.34,5", None), ("1,5x", None), ("-", None)]:
            result = self.host("db", "set", "a.odb", "k", typed, "--kind", "r64", language="de_DE.UTF-8")
            self.assertEqual(result.code, 1 if stored is None else 0, result.err)
            if stored is not None:
                self.assertEqual(self.host("db", "get", "a.odb", "k", language="de_DE.UTF-8").out.rstrip("\r\n"), stored)

    def test_what_the_xml_form_cannot_hold_is_told(self):
        self.host("db", "set", "a.odb", "bytes", "1;2", "--kind", "u8")
        self.host("db", "set", "a.odb", "third", "0.3333333333333333", "--kind", "r64")
        self.host("db", "set", "a.odb", "parts", "one;two")
        self.host("db", "set", "a.odb", "letters", "Ã¤kΩ温e\u0301")
        result = self.host("db", "convert", "a.odb", "a.xml")
        self.assertEqual(result.code, 0)
        self.assertEqual([sentence.split(":")[1].strip() for sentence in result.sentences], ["bytes", "parts"])
        self.assertEqual(self.host("db", "get", "a.xml", "letters").out.strip(), "Ã¤kΩ温e\u0301")
        self.assertEqual(self.host("db", "get", "a.xml", "third").out.strip(), "0.3333333333333333")
        self.assertIn("same file", self.refused(1, "db", "convert", "a.xml", "./a.xml"))
        self.assertIn("--all", self.refused(1, "db", "get", "a.xml", "third", "--all"))

    def test_mistakes(self):
        self.host("db", "set", "a.xml", "k", "1", "--kind", "u16")
        self.refuse((1, "db set a.xml k x", "u16"), (1, "db set a.xml k 70000", "u16"), (1, "db set a.xml k 1 --kind r32", "keeps its kind"),
                    (1, "db set a.xml k.deeper 1", "k.deeper"), (1, "db get a.xml nothing", "nothing"), (1, "db set a.xml z 1 --kind zap", "zap"),
                    (3, "db list none.xml", "none.xml"))
        before = (self.folder / "a.xml").read_bytes()
        for kind in ("u8", "i32"):
            self.assertIn("XML", self.refused(1, "db", "set", "a.xml", "bytes", "1", "--kind", kind))
        self.assertEqual((self.folder / "a.xml").read_bytes(), before)
        result = self.host("db", "set", "a.xml", "parts", "one;two")
        self.assertEqual((result.code, len(result.sentences)), (0, 1), result.err)
        (self.folder / "folder").mkdir()
        self.refuse((3, "db list folder", "folder"), (3, "db convert a.xml folder", "access denied"))

    def test_lists_are_cut_short(self):
        self.host("db", "set", "l.odb", "a.many", ";".join(map(str, range(1000))), "--kind", "u16")
        self.host("db", "set", "l.odb", "a.text", "å" * 201)
        self.host("db", "set", "l.odb", "ab", "x")
        listed = self.host("db", "list", "l.odb", "a").out.splitlines()
        self.assertEqual(listed, ["a.many  u16  0;1;2;3;4;5;6;7 ... (1000 elements)", "a.text  str  " + "å" * 200 + " ... (201 characters)"])
        self.assertTrue(self.host("db", "list", "l.odb", "--all").out.splitlines()[0].endswith(";998;999"))
        self.assertTrue(self.host("db", "get", "l.odb", "a.many").out.strip().endswith(";998;999"))
        self.assertIn("zz", self.refused(1, "db", "list", "l.odb", "zz"))

    def test_files_of_other_editors(self):
        text = "<?xml version='1.0'?>\n<!-- by hand -->\n<PROPERTYDB>\n<PROPERTY name='s'>Mätare</PROPERTY>\n</PROPERTYDB>\n"
        (self.folder / "a.xml").write_text(text, encoding="utf-8")
        self.assertEqual(self.host("db", "list", "a.xml").out.splitlines(), ["s  str  Mätare"])
        (self.folder / "b.xml").write_text(text.replace("</PROPERTY>", "</PROP>"), encoding="utf-8")
        for words in (["list", "b.xml"], ["set", "b.xml", "k", "v"]):
            self.assertIn("line 4", self.refused(3, "db", *words))
        if not host_calls.options.wine:  # whose library keeps such a thing as text
            (self.folder / "c.xml").write_text(text.replace("Mätare", "a&nbsp;b"), encoding="utf-8")
            self.assertIn("line 4", self.refused(3, "db", "list", "c.xml"))
        self.assertIn("rad 4", self.refused(3, "db", "list", "b.xml", language="sv_SE.UTF-8"))

    def test_names_that_no_key_leads_to(self):
        node = b"\0\xff\xff\0\0\x0e\0CMapStringToOb\1\0\0\1\x80\0\0"  # a folder without a name, in it another
        (self.folder / "n.odb").write_bytes(b"\0\0\1\0" + node)
        self.assertIn("0 values in 2 folders", self.host("db", "check", "n.odb").out)

    def test_a_damaged_file_is_refused_and_left_alone(self):
        self.host("db", "set", "a.odb", "k", "some text")
        for name, data in [("cut.odb", (self.folder / "a.odb").read_bytes()[:-3]), ("cut.xml", b"<?xml version=\"1.0\"?>\r\n<PROPERTYDB>")]:
            (self.folder / name).write_bytes(data)
            self.refuse((3, "db list " + name, name), (3, f"db set {name} k2 x", name), (3, "show " + name, name))
            self.assertEqual((self.folder / name).read_bytes(), data)
        self.assertIn("session", self.refused(3, "show", "a.odb"))


class Editing(HostTest):
    def test_sessions(self):
        """What is typed, how many sentences that brings, and what is kept then; the next session goes on with it."""
        words = ["a.b  str  two words", "a.m  u16  5"]
        for name, typed, sentences, kept in [
                ("e.odb", 'set a.b "two words"|set a.n 5 u16|set a.n 6|undo|save|quit', 0, ["a.b  str  two words", "a.n  u16  5"]),
                ("e.odb", "remove a|undo|rename a.n m|undo|redo|save", 0, words),
                # A new folder goes with the step that made it, and undone steps are forgotten by a new one.
                ("e.odb", "set x.y.z 1|undo|set k 2|redo|save", 1, [*words, "k  str  2"]),
                ("group.odb", "begin|set a 1|set b 2|end|set c 3|undo|undo|redo|save", 0, ["a  str  1", "b  str  2"]),
                ("e.xml", "set a 1 i32|set b 2 u16|save|quit", 1, ["b  u16  2"]),  # XML does not hold the one
                ("open.odb", "set a 1|begin|set b 2|begin|set c 3|undo|end|undo|redo|save|quit", 1, ["a  str  1"]),  # undo ends an open group
                # Names may hold quoted separators.
                ("q.odb", "set k 1|set \"'p.q'.r\" 2|undo|set \"s.'t.u'\" 3|rename \"s.'t.u'\" v|undo|save|quit", 0, ["k  str  1", "s.'t.u'  str  3"]),
                ("q.odb", "rename k x.y|rename \"s.'t.u'\" \"'w.x'\"|save|quit", 1, ["k  str  1", "s.'w.x'  str  3"]),
                ("v.odb", "set k v|quit|safe|quit|save|quit", 3, ["k  str  v"]),  # a mistake is no confirmation
                ("v.odb", "set n 1 u16|set n x|remove nothing|rename nothing y|undo|undo|end|fly|set k|set k v|save|quit", 7, ["k  str  v"]),
                ("v.odb", "set k w|quit|quit", 1, ["k  str  v"]),
                ("v.odb", "set k w", -1, ["k  str  v"])]:  # not saved
            with self.subTest(typed):
                result = self.host("db", "edit", name, typed=typed.replace("|", "\n") + "\n")
                self.assertEqual((result.code, len(result.sentences)), (1, 1) if sentences < 0 else (0, sentences), result.err)
                self.assertTrue(sentences >= 0 or "not saved" in result.err, result.err)
                self.assertEqual(self.host("db", "list", name).out.splitlines(), kept)


class Regional(HostTest):
    def test_the_settings_are_shown_with_samples(self):
        swedish = self.host("locale", language="sv_SE.UTF-8").out.splitlines()
        self.assertIn("decimal: \",\"", swedish)
        self.assertIn("short date: 2026-07-04", swedish)
        american = self.host("locale", language="en_US.UTF-8").out.splitlines()
        for line in ("morning: \"AM\"", "afternoon: \"PM\"", "leading zero: 1", "real: -1,234,567.89", "short date: 7/4/2026", "clock: 3:06:07 PM", "words: 1 weeks 1 days"):
            self.assertIn(line, american)

    def test_what_is_read_from_the_right_keeps_its_column(self):
        (self.folder / "a.csv").write_text("time,رطوبة [%],b,ab Ω\n2026-05-28T20:26:40Z,1,2,3\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        table = self.done("show", "a.odb").out
        self.assertRegex(table, "^Time +\u2068رطوبة \\[%\\]\u2069\u200e +b +ab Ω\n")
        heading, row = (re.sub("[\u2068\u2069\u200e]", "", line) for line in table.splitlines())
        self.assertEqual(len(heading), len(row))
        for words in (("show", "a.odb", "--csv"), ("show", "a.odb", "--json")):
            self.assertNotIn("\u2068", self.done(*words).out)
        if not host_calls.options.wine:
            picture = self.done("show", "a.odb", "--picture", "#.#", language="ar_EG.UTF-8").out.splitlines()[1]
            self.assertRegex(picture, "^\u2068[^\u2069]+م\u2069\u200e +\u2068١٫٠\u2069\u200e +\u2068٢٫٠\u2069\u200e +\u2068٣٫٠\u2069\u200e$")

    def test_what_looks_the_same_is_the_same(self):
        (self.folder / "a.csv").write_text("time,e\u0301 [\u2126],b [\u03a9],c [\u00b5A],d [\u03bcA]\n2026-05-28T20:26:40Z,1,2,3,4\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        self.assertEqual(self.done("show", "a.odb", "--csv", "--channel", "\u00e9").out.splitlines()[1].split(",")[1], "1")
        self.done("chart", "a.odb", "--out", "a.svg")
        said = [text.text for text in ElementTree.parse(self.folder / "a.svg").iter() if text.tag.endswith("text")]
        self.assertEqual([sum(unit in said for unit in units) for units in ("\u2126\u03a9", ("\u00b5A", "\u03bcA"))], [1, 1], said)
        if not host_calls.options.wine:  # Windows does not tell
            self.done("db", "set", "a.odb", "Channels.1.sName", "b\u0378")
            self.assertIn(": \u0378; Debian", self.host("chart", "a.odb", "--out", "a.svg").sentences[0])
        (self.folder / "a.xml").write_text("<PROPERTYDB><PROPERTY name='sFamily'>Modbus</PROPERTY><PATH name='Channels'>" + "".join(
            f"<PATH name='{key}'><PROPERTY name='sName'>{name}</PROPERTY><PROPERTY name='nNumber'>30001</PROPERTY></PATH>" for key, name in (("1", "\u00c5"), ("2", "\u212b")))
            + "</PATH></PROPERTYDB>", encoding="utf-8")
        self.refuse((1, "check a.xml", "channels 1 and 2 have names that look the same"))

    def test_orders_to_a_terminal_are_not_passed_on(self):
        (self.folder / "a.csv").write_text("time,a\x1b[31m\u202e\u0085 [k\uffff],\u2067b\u2069\n2026-05-28T20:26:40Z,1,2\n", encoding="utf-8")
        self.done("convert", "a.csv", "a.odb")
        self.assertRegex(self.done("show", "a.odb").out, " a\ufffd\\[31m\ufffd\ufffd \\[k\ufffd\\] +\u2067b\u2069\n")
        self.assertIn("a\x1b[31m", self.done("show", "a.odb", "--csv").out)
        self.done("convert", "a.odb", "a.xml")
        self.assertIn("a\ufffd[31m\u202e\u0085", [value.text for value in ElementTree.parse(self.folder / "a.xml").iter("PROPERTY")])
        self.assertEqual(self.host("show", "a.odb", "--channel", "\x1b").sentences[0].count("\x1b"), 0)

    @native("another shell, and names of other bytes")
    def test_commands_to_be_copied_have_their_quotes(self):
        for name in (b"a b.odb", b"it's.odb", b"na\xefve.odb", "μέτρηση.odb".encode(), b"-x.odb", b"a\x1b$(x).odb"):
            with self.subTest(name):
                (self.folder / "made.rec").unlink(missing_ok=True)
                Recordings.make(self, "made.rec", 3, 2)
                os.rename(self.folder / "made.rec", os.fsencode(self.folder) + b"/" + name + b".rec")
                said = self.host("download", "--port", "COM250", "--out=" + os.fsdecode(name), "--count", 1).sentences[0]
                command = re.search("`(.*)` makes", said).group(1).replace("orvikhost", self.command()[0])
                done = subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment(), capture_output=True, timeout=120)
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertIn(name, os.listdir(os.fsencode(self.folder)))

    def test_spans_and_pictures(self):
        port = self.simulate()
        self.done("download", "--port", port, "--out", "s.odb", "--interval", "0.2 s", "--for", "800 ms", "--timeout", "1 s")
        self.assertEqual(len(self.readings("s.odb")), 1 + 4)
        rows = self.host("show", "s.odb", "--picture", "###.#").out.splitlines()
        self.assertRegex(rows[1], r" 2\d\.\d ")
        self.refuse((1, f"download --port {port} --out s.odb --interval '5 parsec'", "--interval"),
                    (1, f"download --port {port} --out s.odb --for '1 s' --count 3", "--count"), (1, "show s.odb --picture '#x'", "#x"))


class Version(HostTest):
    def test_of_its_own_files_in_both_languages(self):
        home = pathlib.Path(host_calls.options.host).parent
        ending = "dll" if host_calls.options.wine else "so"
        for file, name, english, swedish in [
                (host_calls.options.host, "orvikhost", "Reference host", "Referensvärd"),
                (home / ("OrvikShared.dll" if host_calls.options.wine else "libOrvikShared.so"), "OrvikShared", "System module", "Systemmodul"),
                (home / "plugins" / f"orvik_modbus.{ending}", "Modbus", "Loggers", "Loggrar")]:
            for language, what in [("en_US.UTF-8", english), ("sv_SE.UTF-8", swedish)]:
                out = self.host("version", ("Z:" if host_calls.options.wine else "") + str(file), language=language).out
                self.assertIn("FileVersion: 1.0.0.0", out)
                self.assertIn(f"InternalName: {name}", out)
                self.assertIn(f"FileDescription: {what}", out)

    def test_of_other_files(self):
        self.assertIn("no version", self.refused(3, "version", "Z:/etc/passwd" if host_calls.options.wine else "/etc/passwd"))
        self.assertIn("nothing.dll", self.refused(3, "version", "nothing.dll"))


class Demo(HostTest):
    def test_the_main_job(self):
        if host_calls.options.wine:
            self.assertIn("--port", self.refused(1, "demo"))
            self.assertIn("simulate needs", self.refused(1, "simulate"))
            result = self.host("demo", "--port", self.simulate())
        else:
            result = self.host()
        self.assertEqual(result.code, 0, result.err)
        self.assertEqual(len(re.findall(r"^\d+/\d+/\d{4} \d+:\d\d:\d\d\.\d{3} [AP]M  ", result.out, re.M)), 12)
        for name in ("chart.png", "session.odb", "session.xml", "trace.txt"):
            self.assertGreater((self.folder / "out" / name).stat().st_size, 500)
            self.assertIn("out/" + name, result.out)
        rows = self.readings("out/session.odb")
        self.assertEqual(len(rows), 81)
        # The comment where the first channel is lowest, as the chart shows it and the session keeps it.
        comments = [line for line in self.host("db", "list", "out/session.odb").out.splitlines() if "Lowest: " in line and "Tags" in line]
        self.assertEqual(len(comments), 1)
        # It may be done again, but not over what a user wrote, or over what came there otherwise.
        words = ["demo"] + (["--port", self.simulate()] if host_calls.options.wine else [])
        self.assertEqual(self.host(*words).code, 0)
        self.assertEqual(self.host("db", "set", "out/session.odb", "Chart.Tags.Comment #7.sText", "mine").code, 0)
        self.assertIn("1 comment", self.refused(3, *words))
        self.assertEqual(self.host(*words, "--force").code, 0)
        (self.folder / "out" / "session.odb").unlink()
        self.assertIn("session.xml is there already", self.refused(3, *words).replace("\\", "/"))
        self.assertIn("Lowest: %.6g °C" % min(float(row[1]) for row in rows[1:]), comments[0])
        ElementTree.parse(self.folder / "out" / "session.xml")


if __name__ == "__main__":
    host_calls.main()
