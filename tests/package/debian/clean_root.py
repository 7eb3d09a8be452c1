"""A root folder of its own, in which dpkg installs packages and removes them. Needs no rights of root."""

import pathlib
import shutil
import subprocess
import tempfile

STATUS = pathlib.Path("/var/lib/dpkg/status")
# Stands in for the package that runs ldconfig, and writes down that it was asked to.
TRIGGERED = "#!/bin/sh\nprintf '%s\\n' \"$*\" >>\"$DPKG_ROOT/var/lib/dpkg/triggered\"\n"
FORCED = ["--force-not-root", "--force-bad-path", "--force-script-chrootless"]


def field(package, name):
    """A control field of a .deb file; empty without it."""
    return subprocess.run(["dpkg-deb", "--field", package, name], check=True, capture_output=True,
                          text=True).stdout.strip()


def names_in(dependencies):
    """The names in a field such as Depends."""
    return {part.split()[0].split(":")[0] for part in dependencies.replace("|", ",").split(",") if part.strip()}


class CleanRoot:
    """Knows of the packages that this machine has what `packages` depend on, and nothing else: dpkg compares
    their true versions with what is asked for. Gone when `close` is called."""

    def __init__(self, packages):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="vwb-root-"))
        self.database = self.folder / "var/lib/dpkg"
        for folder in ("info", "updates", "triggers"):
            (self.database / folder).mkdir(parents=True)
        info = self.database / "info"
        (info / "format").write_text("1\n", encoding="utf-8")
        wanted = {"libc-bin"}.union(*(names_in(field(package, "Depends")) for package in packages))
        known = []
        for text in STATUS.read_text(encoding="utf-8").split("\n\n"):
            lines = dict(line.split(": ", 1) for line in text.splitlines() if ": " in line and line[0] != " ")
            names = {lines.get("Package")} | names_in(lines.get("Provides", ""))
            if lines.get("Status") == "install ok installed" and names & wanted:
                known.append(text)
                for name in (lines["Package"], f"{lines['Package']}:{lines['Architecture']}"):
                    (info / f"{name}.list").write_text("", encoding="utf-8")
        (self.database / "status").write_text("\n\n".join(known) + "\n", encoding="utf-8")
        (self.database / "triggers/ldconfig").write_text("libc-bin/noawait\n", encoding="utf-8")
        script = info / "libc-bin.postinst"
        script.write_text(TRIGGERED, encoding="utf-8")
        script.chmod(0o755)

    def dpkg(self, *arguments, check=True):
        command = ["dpkg", f"--root={self.folder}", f"--log={self.database}/log", *FORCED, *arguments]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if check and done.returncode != 0:
            raise AssertionError(f"{' '.join(map(str, command))}:\n{done.stdout}")
        return done

    def ldconfig_calls(self):
        """What the trigger was called with, one call a line, since this was last asked."""
        file = self.database / "triggered"
        calls = file.read_text(encoding="utf-8").splitlines() if file.exists() else []
        file.unlink(missing_ok=True)
        return calls

    def files(self):
        """The names of all files and links, without dpkg's own."""
        return {file.relative_to(self.folder).as_posix() for file in self.folder.rglob("*")
                if (file.is_symlink() or not file.is_dir()) and self.database not in file.parents}

    def close(self):
        shutil.rmtree(self.folder)
