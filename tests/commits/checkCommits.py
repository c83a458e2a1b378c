#!/usr/bin/env python3
"""Fails when a commit since the last tag has no body that says why it was made and how it was proved.

Without a tag the commits count that came after this check. Merges need no body. A tree without its history (an archive)
has nothing to check.
"""
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LEAST_LETTERS = 80  # a sentence with a reason and one with a proof
TRAILERS = ("Signed-off-by:", "Co-authored-by:", "Reviewed-by:")


def git(*arguments):
    done = subprocess.run(["git", *arguments], cwd=ROOT, capture_output=True, text=True)
    return done.stdout if done.returncode == 0 else ""


def first_unchecked():
    """The commit up to which nothing is checked."""
    tag = git("describe", "--tags", "--abbrev=0").strip()
    if tag:
        return tag
    added = git("log", "--diff-filter=A", "--format=%H", "--", str(pathlib.Path(__file__).resolve())).split()
    return added[-1] if added else ""


def fault(message):
    """What is wrong with a commit message; None when nothing is."""
    lines = [line for line in message.splitlines()[1:] if line.strip() and not line.startswith(TRAILERS)]
    if sum(len(line) for line in lines) < LEAST_LETTERS:
        return "its body does not say why, and how it was proved"
    return None


def check_the_check():
    assert fault("Subject\n") and fault("Subject\n\nBecause.\n\nSigned-off-by: a <b@c>\n")
    assert fault("Subject\n\nReaders lost the last byte of a block.\nThe test of all read sizes was red, and a model agrees now.\n") is None


def main():
    check_the_check()
    since = first_unchecked()
    found = []
    if since:
        for entry in git("log", "--no-merges", "--format=%h %B%x00", f"{since}..HEAD").split("\0"):
            commit, _, message = entry.strip().partition(" ")
            if commit and (what := fault(message)):
                found.append(f"{commit} {message.splitlines()[0]}: {what}")
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
