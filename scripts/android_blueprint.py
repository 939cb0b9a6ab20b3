"""Reads Android.bp: its lists of sources and its modules."""
import re
import subprocess

FILE = "Android.bp"
LIST = re.compile(r"^(\w+_sources) = \[\n(.*?)\]$", re.MULTILINE | re.DOTALL)
MODULE = re.compile(r'^(\w+) \{\n    name: "([^"]+)",\n(.*?)^\}$', re.MULTILINE | re.DOTALL)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def list_files(pattern):
    output = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", f":(glob){pattern}"],
                            check=True, capture_output=True, text=True).stdout
    return output.split()


def lists(text):
    return {name: re.findall(r'"([^"]+)"', body) for name, body in LIST.findall(text)}


class Module:
    """A module's kind and text. `own_words` gives a list property without the defaults' share."""

    def __init__(self, kind, body):
        self.kind = kind
        self.body = body

    def own_words(self, name, known_lists):
        found = re.search(rf"^    {name}: (.*?),$(?=\n    \w|\n*\Z)", self.body,
                          re.MULTILINE | re.DOTALL)
        if not found:
            return []
        words = re.findall(r'"([^"]+)"', found.group(1))
        for variable in re.findall(r"\b(\w+_sources)\b", found.group(1)):
            words += known_lists[variable]
        return words


class Blueprint:
    """Lists by name, modules by name; `words` and `sources` count what defaults bring."""

    def __init__(self, text):
        self.lists = lists(text)
        self.modules = {name: Module(kind, body) for kind, name, body in MODULE.findall(text)}

    def words(self, module, name):
        found = []
        for default in self.modules[module].own_words("defaults", self.lists):
            found += self.words(default, name)
        return found + self.modules[module].own_words(name, self.lists)

    def of_kind(self, *kinds):
        return [name for name, module in self.modules.items() if module.kind in kinds]

    def sources(self, module):
        return [path for pattern in self.words(module, "srcs") for path in list_files(pattern)]
