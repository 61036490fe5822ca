#!/usr/bin/python3
"""kovadx run --save: the data at the end as a Data Package; see kovadx_kit.py."""
import csv
import json
import os
import re
import resource
import signal

from kovadx_kit import EXPECTED, PENGUINS, KovadxTest, run_tests


class Saving(KovadxTest):
    def test_another_reader_finds_the_penguins(self):
        path = self.scratch / "saved.json"
        self.assertEqual(self.save(path), (0, EXPECTED, []))
        package = json.loads(path.read_text(encoding="utf-8"))["resources"][0]
        with open(self.scratch / package["path"], encoding="utf-8", newline="") as table:
            rows = list(csv.DictReader(table))
        with open(PENGUINS / "penguins.csv", encoding="utf-8", newline="") as table:
            original = list(csv.DictReader(table))
        self.assertEqual(len(rows), 344)
        self.assertEqual(rows, original)
        fields = {field["name"]: field for field in package["schema"]["fields"]}
        self.assertEqual(list(fields), list(original[0]))
        self.assertEqual([fields[name]["type"] for name in ("species", "bill_depth_mm", "body_mass_g")],
                         ["string", "number", "integer"])
        self.assertEqual(fields["body_mass_g"]["title"], "Body mass (g)")
        self.assertEqual(fields["sex"]["categories"], [{"value": 1, "label": "Female"}, {"value": 2, "label": "Male"}])
        self.assertEqual(fields["sex"]["missingValues"], ["", {"value": "9", "label": "Undetermined"}])
        self.assertEqual(sorted(file.name for file in self.scratch.iterdir()), ["pipes", "saved.csv", "saved.json"])

    def test_what_was_saved_is_opened_and_saved_again(self):
        path = self.scratch / "saved.json"
        self.assertEqual(self.save(path)[0], 0)
        first = path.read_text()
        self.assertEqual(self.save(path, data=path), (0, EXPECTED, []))
        self.assertEqual(path.read_text(), first.replace("saved.csv", "saved-2.csv"))
        self.assertEqual(sorted(file.name for file in self.scratch.glob("saved*")), ["saved-2.csv", "saved.json"])

    def test_a_program_that_fails_saves_nothing(self):
        path = self.scratch / "saved.json"
        self.assertEqual(self.save(path, *self.shell("exit 3", "exit 3")), (3, [], []))
        self.assertFalse(path.exists())

    def test_without_data_nothing_is_saved(self):
        run = self.kovadx("run", "--save", self.scratch / "saved.json", "--", *self.shell("exit 0", "exit 0"))
        self.assertEqual(run, (125, [], ["kovadx: the data could not be saved: no data set is active"]))
        self.assertEqual(list(self.scratch.glob("saved*")), [])

    def test_a_place_that_can_not_be_written_to_stops_everything(self):
        marker = self.scratch / "marker"
        foreign = self.scratch / "foreign.json"
        foreign.write_text('{"mine": 1}')
        folder = self.scratch / "folder.json"
        folder.mkdir()
        missing = self.scratch / "no" / "saved.json"
        for path, problem in (
            (missing, r" can not be made \(.+\); check that its folder is there and that files may be made in it"),
            (foreign, " is no descriptor of a Data Package; choose another name, or remove it"),
            (folder, " is a folder, a link or a device; name a file"),
        ):
            with self.subTest(path=path):
                code, output, errors = self.save(path, *self.shell(f"echo x > {marker}", f"echo x > {marker}"))
                self.assertEqual((code, output, len(errors)), (125, [], 1))
                self.assertRegex(errors[0], f"^kovadx: can not save the data: {re.escape(str(path))}{problem}$")
                self.assertFalse(marker.exists(), "the program was started all the same")
        self.assertEqual(foreign.read_text(), '{"mine": 1}')


class PosixSaving(KovadxTest):
    def test_a_folder_that_is_not_the_users(self):
        if os.geteuid() == 0:  # Nothing is forbidden to the superuser but what nobody may do.
            path = "/proc/saved.json"
        else:
            folder = self.scratch / "closed"
            folder.mkdir(mode=0o500)
            path = folder / "saved.json"
        code, output, errors = self.save(path)
        self.assertEqual((code, output, len(errors)), (125, [], 1))
        self.assertRegex(errors[0], rf"^kovadx: can not save the data: {path} can not be made \(.+\); check that its folder")

    def test_a_full_disk_leaves_the_older_package(self):
        path = self.scratch / "saved.json"
        self.assertEqual(self.save(path)[0], 0)
        before = path.read_bytes(), (self.scratch / "saved.csv").read_bytes()

        def limit():  # A file may be no larger, as if the disk were full.
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (8192, 8192))

        code, _, errors = self.save(path, "/bin/true", preexec_fn=limit)
        self.assertEqual((code, len(errors)), (125, 1))
        table = self.scratch / "saved-2.csv"
        self.assertRegex(errors[0], rf"^kovadx: the data could not be saved: {table} can not be written \(.+\); "
                                    "free some room, or choose another folder$")
        self.assertEqual((path.read_bytes(), (self.scratch / "saved.csv").read_bytes()), before)
        self.assertEqual(sorted(file.name for file in self.scratch.glob("saved*")), ["saved.csv", "saved.json"])

    def test_a_folder_that_goes_meanwhile_is_told(self):
        folder = self.scratch / "folder"
        folder.mkdir()
        code, output, errors = self.save(folder / "saved.json", "/bin/rmdir", folder)
        self.assertEqual((code, output, len(errors)), (125, [], 1))
        self.assertIn(f"kovadx: the data could not be saved: {folder}/saved.csv can not be made (", errors[0])


if __name__ == "__main__":
    run_tests((Saving,), (PosixSaving,))
