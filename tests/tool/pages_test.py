#!/usr/bin/env python3
"""Types into bash what a user would and compares what the tool's completion offers; reads the manual page, too, which must
tell of every command and option that help tells of.   Usage: pages_test.py LUM"""
import re
import subprocess
import sys

LUM = sys.argv[1]
failures = []


def lum(*arguments):
    return subprocess.run([LUM, *arguments], capture_output=True, text=True, check=True, timeout=60).stdout


def expect(fault, got, expected):
    if got != expected:
        failures.append(f"{fault}: got {got!r}, expected {expected!r}")


def completed(words):
    script = lum("--generate", "bash") + 'COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _lum; printf "%s\\n" "${COMPREPLY[@]}"'
    done = subprocess.run(["bash", "-c", script, "bash", *words], capture_output=True, text=True, check=True, timeout=60)
    return done.stdout.split()


def check_bash():
    rows = [
        ("a command", ["lum", "xl"], ["xlsformat"]),
        ("an option, with those of all commands", ["lum", "save", "--un"], ["--untrusted"]),
        ("an option of another command", ["lum", "save", "--tok"], []),
        ("a command of a group", ["lum", "zip", "l"], ["list"]),
        ("a group's options", ["lum", "zip", "cat", "--h"], ["--help"]),
        ("a fixed value", ["lum", "link", "x"], ["xlink"]),
        ("a file named as a command", ["lum", "cat", "zip", "l"], []),
        ("a value of an option", ["lum", "--generate", ""], ["man", "bash", "zsh"]),
    ]
    for fault, words, expected in rows:
        expect(fault, completed(words), expected)


def check_manual():
    page = lum("--generate", "man").replace("\\-", "-")
    version = re.search(r'"LumCommon ([\d.]+)"', page)
    expect("the version", version and "".join(f"{int(n):02}" for n in version[1].split(".")[:2]).lstrip("0"), lum("version").strip())
    commands = re.findall(r"^  (\w+) ", lum("--help").split("Subcommands:")[1], re.MULTILINE)
    expect("hardly any command is found", len(commands) > 10, True)
    for command in commands:
        text = lum(command, "--help")
        section = re.findall(rf"^\.SS lum {command}\b.*(?:\n(?!\.SS).*)*", page, re.MULTILINE)
        expect(f"{command} is in the page", bool(section), True)
        for option in set(re.findall(r"^  (?:-\w,)?(--\w[\w-]*)", text, re.MULTILINE)) - {"--help"}:
            expect(f"{option} of {command} is in the page", f"\\fB{option}\\fR" in "".join(section), True)


check_bash()
check_manual()
print("\n".join(failures) or "all as expected")
sys.exit(1 if failures else 0)
