#!/usr/bin/python3
"""End-to-end runs of `quoin restore`.

usage: RestoreCommand_cli_test.py [UNITTEST ARGUMENT...]
The environment is that of quoin_cli_test.py, whose helpers it uses.
"""

import unittest

import saving_cli_test as saving


class RestoreTest(saving.SavingTest):
    def test_the_last_backup_comes_back_and_a_second_time_undoes_it(self):
        plan = self.plan()
        original = plan.read_bytes()
        self.paint(plan, 10)
        painted = plan.read_bytes()
        dry = self.run_ok("restore", plan, "--dry-run")
        self.assertEqual(dry, f"{plan}: {plan}.bak would be put back\n")
        self.assertEqual(plan.read_bytes(), painted)
        text = self.run_ok("restore", plan)
        self.assertEqual(text, f"{plan}: {plan}.bak is put back; what stood there is "
                               f"{plan}.2.bak\n")
        self.assertEqual(plan.read_bytes(), original)
        self.assertEqual(self.names(), ["plan.dxf", "plan.dxf.2.bak"])
        self.run_ok("restore", plan)
        self.assertEqual(plan.read_bytes(), painted)
        self.assertEqual(self.path("plan.dxf.3.bak").read_bytes(), original)

    def test_an_older_backup_comes_back_by_its_name(self):
        plan = self.plan()
        for red in (10, 20, 30):
            self.paint(plan, red)
        self.run_ok("restore", plan, "--from", self.path("plan.dxf.bak"))
        self.assertEqual(plan.read_bytes(), saving.FLAT.read_bytes())
        self.assertEqual(self.names(), ["plan.dxf", "plan.dxf.2.bak", "plan.dxf.3.bak",
                                        "plan.dxf.4.bak"])

    def test_a_drawing_without_a_backup_stays_and_keeps_no_other_back(self):
        plan = self.plan()
        other = self.plan("other.dxf")
        self.paint(other, 10)
        message = self.fails(4, "restore", other, plan)
        self.assertIn(f"{plan}: there is no backup of it, neither {plan}.bak nor a later one",
                      message)
        self.assertEqual(other.read_bytes(), saving.FLAT.read_bytes())
        self.assertEqual(plan.read_bytes(), saving.FLAT.read_bytes())
        self.fails(2, "restore", plan, other, "--from", self.path("x"))
        self.fails(5, "restore", plan, "--from", self.path("none"))
        self.fails(4, "restore", self.path("nowhere/plan.dxf"))

    def test_a_drawing_that_was_deleted_comes_back(self):
        plan = self.plan()
        self.paint(plan, 10)
        plan.unlink()
        self.assertEqual(self.run_ok("restore", plan), f"{plan}: {plan}.bak is put back\n")
        self.assertEqual(plan.read_bytes(), saving.FLAT.read_bytes())
        self.assertEqual(self.names(), ["plan.dxf"])

    def test_the_report_is_json_where_asked(self):
        plan = self.plan()
        self.paint(plan, 10)
        row = self.report("restore", plan)
        self.assertEqual(row, {"input": {"file": str(plan)}, "from": f"{plan}.bak",
                               "output": str(plan), "backup": f"{plan}.2.bak", "exitCode": 0,
                               "error": None, "warnings": []})


if __name__ == "__main__":
    unittest.main()
