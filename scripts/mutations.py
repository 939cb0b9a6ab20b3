"""Which faults scripts/mutate.py can put into a source file: one operator, bound, constant or statement
each. clang-format's layout is relied on: binary operators have spaces around them, templates do not."""
import re
from typing import Iterator, NamedTuple


class Mutation(NamedTuple):
    path: str
    line: int  # from 1
    before: str  # the line as it is and as it becomes, without indentation
    after: str
    start: int  # offsets in the file, and what goes there
    end: int
    text: str

    def __str__(self) -> str:
        return f'{self.path}:{self.line}: {self.before}  ->  {self.after or "(nothing)"}'


OPERATORS = {
    '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'],
    '==': ['!='], '!=': ['=='], '&&': ['||'], '||': ['&&'],
    '+': ['-'], '-': ['+'], '*': ['+'], '/': ['*'], '%': ['/'],
    '<<': ['>>'], '>>': ['<<'], '&': ['|'], '|': ['&'], '^': ['&'],
    '+=': ['-='], '-=': ['+='], '*=': ['+='], '/=': ['*='], '&=': ['|='], '|=': ['&='],
}
WORDS = {'true': ['false'], 'false': ['true'], 'min': ['max'], 'max': ['min'],
         'break': ['continue'], 'continue': ['break'], 'nullptr': []}

BLANKED = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\'|^[ \t]*#(?:\\\n|[^\n])*',
                     re.S | re.M)
OPERATOR = re.compile(r'(?<= )(<<|>>|[<>=!]=|&&|\|\||[-+*/&|]=|[-+*/%<>&|^])(?=[ \n])')
STEP = re.compile(r'\+\+|--')
NOT = re.compile(r'(?<=[(\s])!(?=[\w(*])')
NUMBER = re.compile(r'(?<![\w.])(0[xX][0-9a-fA-F]+|\d+\.\d*(?:[eE][-+]?\d+)?|\d[\d\']*)(?=[uUlLfF]*\b)(?![\w.]*\.)')
WORD = re.compile(r'\b(' + '|'.join(WORDS) + r')\b')
# A call or an assignment that fills a line, inside a function.
STATEMENT = re.compile(r'^[ ]{2,}(?!return\b|break\b|continue\b|case\b|using\b|delete\b|goto\b|static_assert\b)'
                       r'(?:if \([^\n]*?\) )?(?:[\w.:\[\]>*+-]+(?:->|\.|::))?[\w.\[\]>* +-]*?'
                       r'(?:\([^;{}]*\)| [-+*/|&]?= [^;{}]*);$', re.M)
DECLARATION = re.compile(r'^\s*(?:const|constexpr|static|auto|struct|[\w:<>]+[*&]*\s+[*&]?\w+\s*[=({\[;])')


def masked(text: str) -> str:
    """The text with comments, strings and preprocessor lines blanked, at the same offsets."""
    return BLANKED.sub(lambda m: re.sub(r'[^\n]', ' ', m.group()), text)


def other_numbers(literal: str) -> list[str]:
    if '.' in literal:
        return [str(float(literal) * 2 if float(literal) else 1.0)]
    if literal.lower().startswith('0x'):
        return [hex(int(literal, 16) ^ 1)]
    value = int(literal.replace("'", ''))
    return [str(value + 1)] + ([str(value - 1)] if value else [])


def edits(code: str) -> Iterator[tuple[int, int, str]]:
    for match in OPERATOR.finditer(code):
        for other in OPERATORS.get(match.group(), []):
            yield match.start(), match.end(), other
    for match in STEP.finditer(code):
        yield match.start(), match.end(), '--' if match.group() == '++' else '++'
    for match in NOT.finditer(code):
        yield match.start(), match.end(), ''
    for match in NUMBER.finditer(code):
        for other in other_numbers(match.group()):
            yield match.start(), match.end(), other
    for match in WORD.finditer(code):
        for other in WORDS[match.group()]:
            yield match.start(), match.end(), other
    for match in STATEMENT.finditer(code):
        if not DECLARATION.match(match.group()):
            yield match.start() + len(match.group()) - len(match.group().lstrip()), match.end(), ';'


def mutations(path: str, text: str) -> list[Mutation]:
    found = []
    for start, end, other in edits(masked(text)):
        first = text.rfind('\n', 0, start) + 1
        last = text.find('\n', end)
        before = ' '.join(text[first:last].split())
        after = ' '.join((text[first:start] + other + text[end:last]).split())
        found.append(Mutation(path, text.count('\n', 0, start) + 1, before, after, start, end, other))
    return sorted(found, key=lambda m: (m.start, m.end, m.text))
