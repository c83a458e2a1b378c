"""Runs the programs of the contenders against each other, in turns."""
import random
import subprocess

OURS = "lumcommon"
SMALL_BYTES = 1_000_000


class Unfair(Exception):
    """The contenders found different things in the same input."""


class Contender:
    """A running program with one question, one label and one input; see bench/contest/main.cpp."""

    def __init__(self, program, question, label, file):
        self.label = label
        self.times = {}  # part: what the rounds measured
        self.process = subprocess.Popen([program, question, label, file], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True)
        self.answer = None

    def read_answer(self):
        line = self.process.stdout.readline().split()
        if line[:1] != ["answer"]:
            raise Unfair(f"{self.label} gives no answer")
        self.answer = tuple(map(int, line[1:]))

    def take_turn(self, command):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        words = self.process.stdout.readline().split()
        if not words:
            raise Unfair(f"{self.label} ended early")
        for part, number in zip(words[::2], words[1::2]):
            self.times.setdefault("" if part == "-" else part, []).append(float(number))

    def stop(self):
        self.process.stdin.close()
        self.process.wait()


def take_turns(contenders, rounds, command="go"):
    for _ in range(rounds):
        for contender in random.sample(contenders, len(contenders)):
            contender.take_turn(command)


class Field:
    """All contenders that could be built, by question."""

    def __init__(self, folder):
        self.missing = [name for name in (folder / "missing-peers.txt").read_text(encoding="utf-8").strip().split(";")
                        if name]
        self.programs = {}  # (question, label): program
        for program in sorted((folder / "contenders").iterdir()):
            if program.name in self.missing:
                continue  # built before its library went away
            listed = subprocess.run([program], capture_output=True, text=True, check=True).stdout
            for line in listed.splitlines():
                question, label = line.split("\t")
                self.programs[question, label] = program

    def labels(self, question):
        """Ours first; ways of use in the order in which they are told."""
        found = [label for asked, label in self.programs if asked == question]
        return sorted(found, key=lambda label: (label != OURS, label.lower())) if OURS in found else found

    def start(self, question, file, labels):
        """Contenders that have given equal answers. One after the other: the checks would disturb each other."""
        contenders = []
        for label in labels:
            contenders.append(Contender(self.programs[question, label], question, label, file))
            contenders[-1].read_answer()
        answers = {contender.answer for contender in contenders}
        if len(answers) > 1:
            told = "; ".join(f"{contender.label} {contender.answer}" for contender in contenders)
            for contender in contenders:
                contender.stop()
            raise Unfair(f"{question}, {file.name}: different answers: {told}")
        return contenders

    def compare(self, question, file):
        """Only whether the answers are equal."""
        for contender in self.start(question, file, self.labels(question)):
            contender.stop()

    def measure(self, question, file, rounds, labels=None, command="go"):
        """{label: {part: [nanoseconds a byte or other unit, one a round]}}

        Where memory happens to lie makes some processes faster than others, for small files most of all. These start
        anew for each round.
        """
        measured = {}
        heats = rounds if file.stat().st_size < SMALL_BYTES else 1
        for _ in range(heats):
            contenders = self.start(question, file, labels or self.labels(question))
            take_turns(contenders, rounds // heats, command)
            for contender in contenders:
                contender.stop()
                for part, times in contender.times.items():
                    measured.setdefault(contender.label, {}).setdefault(part, []).extend(times)
        return measured

    def memory(self, file, rounds=3):
        """{label: [bytes of memory a byte of input]}; every number is that of a new process."""
        measured = {}
        for label in self.labels("walk"):
            program = self.programs["walk", label]
            for _ in range(rounds):
                told = subprocess.run([program, "memory", label, file], capture_output=True, text=True, check=True)
                measured.setdefault(label, []).append(float(told.stdout.split()[1]))
        return measured
