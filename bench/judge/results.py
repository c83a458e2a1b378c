"""What a run has measured. It can be stored and read again, so that tables and pictures need no new run."""
import dataclasses
import json
import pathlib
import shutil
import statistics
import subprocess


@dataclasses.dataclass
class Result:
    """One question, one part of it, one input."""

    asked: str
    part: str
    size: str
    meaning: str  # of question and part
    kind: str  # of input
    unit: str
    times: dict  # label: [a number a round]; for the same label and round, contenders ran next to each other

    def median(self, label):
        return statistics.median(self.times[label])

    def is_use(self):
        """Whether it compares ways of use, and not contenders."""
        return self.asked.startswith("use-")

    def middle(self, label):
        """The middle half of the rounds."""
        values = self.times[label]
        if len(values) < 3:
            return min(values), max(values)
        low, _, high = statistics.quantiles(values, n=4, method="inclusive")
        return low, high

    def ratio(self, theirs, ours):
        """Above 1 we are faster, or need less."""
        return self.median(theirs) / self.median(ours)

    def is_close(self, theirs, ours):
        """Whether the middle halves overlap: then no difference is claimed."""
        (a, b), (c, d) = self.middle(theirs), self.middle(ours)
        return a <= d and c <= b


def describe_run(rounds):
    """The machine and the state of the source, in one line."""
    cpu = [line.split(":")[1].strip() for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines()
           if line.startswith("model name")]
    compiler = subprocess.run(["c++", "-dumpfullversion"], capture_output=True, text=True).stdout.strip()
    commit = shutil.which("git") and subprocess.run(["git", "describe", "--always", "--dirty"], capture_output=True,
                                                    text=True, cwd=pathlib.Path(__file__).parent).stdout.strip()
    return (f"{rounds} rounds; {len(cpu)} cores, {cpu[0] if cpu else 'of an unknown kind'}; compiler {compiler}"
            + (f"; source {commit}" if commit else ""))


def store(path, about, results):
    path.write_text(json.dumps({"about": about, "results": [vars(result) for result in results]}, indent=1),
                    encoding="utf-8")


def read(path):
    stored = json.loads(path.read_text(encoding="utf-8"))
    return stored["about"], [Result(**result) for result in stored["results"]]
