"""The Debian packages: makes them, installs them in an empty root, and uses what is there."""
import gzip
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

BUILD = Path(os.environ["SMARTDIAGNOSE_BUILD"])
PROGRAMS = ["zorv-local", "zorv-explain", "zorv-check", "zorv-fleet", "lumo-sim"]


def run(*command, **options):
    return subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, text=True, check=True, **options).stdout


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(holder.cleanup)
        cls.place = Path(holder.name)
        run("cpack", "-B", cls.place / "packages", "--config", BUILD / "CPackConfig.cmake", cwd=BUILD)
        cls.root = cls.place / "root"
        (cls.root / "var/lib/dpkg/info").mkdir(parents=True)
        (cls.root / "var/lib/dpkg/updates").mkdir()
        (cls.root / "var/lib/dpkg/status").touch()
        # The empty root has no libraries; that the machine has them is what the programs show.
        root = [] if os.getuid() == 0 else ["unshare", "-r"]
        run(*root, "dpkg", "--root", cls.root, "--log=/dev/null", "--force-depends", "--install",
            *(cls.place / "packages").glob("*.deb"), stderr=subprocess.DEVNULL)

    def test_installed_programs_answer_as_the_built_ones(self):
        world = ["--root", self.place / "world"]
        run(self.root / "usr/bin/lumo-sim", *world, "--end", "20230105143000", "--hours", "2")
        range_ = ["20230105123000", "20230105143000"]
        for words in (["delayanal", *range_], ["explain", *range_], ["help"]):
            installed, built = (run(place / "zorv-local", *world, *words) for place in (self.root / "usr/bin", BUILD / "bin"))
            self.assertEqual(installed, built)
            self.assertIn("anal" if words == ["help"] else "BDM_DISK_READ", installed)

    def test_lintian_finds_no_error(self):
        packages = sorted((self.place / "packages").glob("*.deb"))
        self.assertEqual(len(packages), 3)
        run("lintian", "--allow-root", "--fail-on", "error", *packages)

    def test_packages_need_each_other_and_their_libraries(self):
        needs = {name: run("dpkg-query", "--admindir", self.root / "var/lib/dpkg", "-W", "-f", "${Depends}", name)
                 for name in ("libsmartdiagnose", "zorv-tools", "libsmartdiagnose-dev")}
        self.assertRegex(needs["zorv-tools"], r"libsmartdiagnose \(= [0-9.]+\)")
        for name in ("libsmartdiagnose", "zorv-tools"):
            self.assertIn("libsqlite3-0", needs[name])

    def test_manuals_tell_every_option_and_command(self):
        names = [re.match("[a-z]+", line[2:])[0] for line in run(self.root / "usr/bin/zorv-local", "help").splitlines()
                 if line.startswith("  ")]
        self.assertIn("switch", names)
        for program in PROGRAMS:
            page = gzip.decompress((self.root / f"usr/share/man/man1/{program}.1.gz").read_bytes()).decode().replace("\\-", "-")
            options = re.findall("--[a-z-]+", run(self.root / "usr/bin" / program, "--help"))
            for text in options + (names if program == "zorv-local" else []):
                self.assertIn(text, page)
        self.assertIn(b"subGraph", gzip.decompress((self.root / "usr/share/man/man5/route_config.5.gz").read_bytes()))

    def test_the_unit_asks_for_what_there_is_and_is_disabled(self):
        unit = (self.root / "usr/lib/systemd/system/zorv-explain-watch.service").read_text()
        program, *words = re.search("ExecStart=/(.*)", unit)[1].split()
        options = run(self.root / program, "--help").split()
        self.assertEqual([word for word in words if word.startswith("--") and word not in options], [])
        self.assertEqual([*self.root.rglob("*.wants")], [])

    def test_completion(self):
        for line, expected in (("zorv-local --root x dela", ["delaydetect", "delayanal"]),
                               ("zorv-local --plu", ["--plugin"]), ("zorv-local --root capture capture --t", ["--timeout"]),
                               ("zorv-local capture /et", ["/etc"]), ("zorv-local explain --basel", ["--baseline"]), ("lumo-sim --scenario two", ["two-faults"]),
                               ("zorv-explain --ht", ["--html"]), ("zorv-check --li", ["--list"]), ("lumo-sim --fault-st", ["--fault-start", "--fault-strength"]), ("lumo-sim err", [])):
            words = line.split()
            script = (f'. "{self.root}/usr/share/bash-completion/completions/{words[0]}"; COMP_WORDS=({line}); COMP_CWORD={len(words) - 1}; '
                      f'_zorv_complete {words[0]} {words[-1]} {words[-2]}; echo "${{COMPREPLY[*]}}"')
            self.assertEqual(run("bash", "-c", script).split(), expected, line)

    def test_a_host_compiles_with_the_headers(self):
        (self.place / "host.c").write_text("#include <agent/agent_alarm.h>\n#include <agent/agent_message.h>\n")
        environment = {**os.environ, "PKG_CONFIG_PATH": str(self.root / "usr/share/pkgconfig")}
        flags = run("pkg-config", "--cflags", "zorv-agent", env=environment).split()
        run("c++", "-x", "c", "-fsyntax-only", *flags, self.place / "host.c")
        (self.place / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(host C)\nfind_package(ZorvAgent 0.1 REQUIRED)\n"
            "add_library(host OBJECT host.c)\ntarget_link_libraries(host PRIVATE zorv::agent)\n")
        run("cmake", "-S", self.place, "-B", self.place / "build", f"-DCMAKE_PREFIX_PATH={self.root}/usr")
        run("cmake", "--build", self.place / "build")


if __name__ == "__main__":
    unittest.main()
