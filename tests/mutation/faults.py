"""The faults that can be seeded into one line of C++: each is the line as a tired programmer might have written it."""

import re
from dataclasses import dataclass

NEIGHBOURS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">"], "<=": ["<"], ">": [">=", "<"], ">=": [">"],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "+=": ["-="], "-=": ["+="],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"],
}
# Spaces tell operators from the signs of templates, pointers and numbers: clang-format puts them there.
OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|&&|\|\||<<|>>|\+=|-=|[-+*/%<>&|])(?= )")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f']+|\d[\d']*)(?=U?\b)(?![\w'.]*[.'])")
TRUTH = re.compile(r"\b(true|false|TRUE|FALSE)\b")
NEGATION = re.compile(r"!(?=[\w(*_])")
TEXT = re.compile(r'"((?:[^"\\]|\\.)*)"')
# `init; ` may come before the condition; a declaration is none that can be negated.
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \((?:[^;]*; )?)([^;=]*(?:[=!<>]=[^;=]*)*)(\) \{.*)$")
CHOICE = re.compile(r" \? ([^?:]+) : ([^?:;]+?)(?=[;)]|$)")
STATEMENT = re.compile(r"^\s*(?:(?:\+\+|--|\*)?[\w:.\->\[\]*()]+(?:\(.*\)| [-+|&]?= .*);|break;|continue;)$")
RETURN = re.compile(r"^(\s*return )(?!\{\};|nullptr;|std::nullopt;|true;|false;)(.+);$")
OPPOSITE = {"true": "false", "false": "true", "TRUE": "FALSE", "FALSE": "TRUE"}
NOT_CODE = re.compile(r"^\s*(#|//|using |namespace |template |static_assert|\[\[|extern )")


@dataclass(frozen=True)
class Fault:
    number: int  # of the line, from 1
    before: str
    after: str
    kind: str

    def __str__(self):
        return f"{self.number:4} {self.kind}\n       - {self.before.strip()}\n       + {self.after.strip()}"


def _code(line):
    """The line with its comment and what is inside its texts blanked out, so that places stay what they are."""
    line = TEXT.sub(lambda text: '"' + "_" * len(text[1]) + '"', line)
    comment = line.find("//")
    return line if comment < 0 else line[:comment] + " " * (len(line) - comment)


def _replaced(line, match, text):
    return line[:match.start()] + text + line[match.end():]


def _one_more(number):
    if re.match("0[0-7]", number):
        return f"0{int(number, 8) + 1:o}"
    return str(int(number, 0) + 1)


def _in_line(line):
    code = _code(line)
    for match in OPERATOR.finditer(code):
        for other in NEIGHBOURS[match[0]]:
            yield "operator", _replaced(line, match, other)
    for match in STEP.finditer(code):
        yield "step", _replaced(line, match, "--" if match[0] == "++" else "++")
    for match in NUMBER.finditer(code):
        yield "number", _replaced(line, match, _one_more(match[1].replace("'", "")))
    for match in TRUTH.finditer(code):
        yield "truth", _replaced(line, match, OPPOSITE[match[0]])
    for match in NEGATION.finditer(code):
        yield "negation", _replaced(line, match, "")
    for match in TEXT.finditer(line):
        if code[match.start()] == '"':
            yield "text", _replaced(line, match, '"' + match[1] + '!"')
    if match := CONDITION.match(code):
        negated = f"{line[:match.end(1)]}!({line[match.start(2):match.end(2)]}){line[match.start(3):]}"
        yield "condition", negated
    if match := CHOICE.search(code):
        first, second = line[match.start(1):match.end(1)], line[match.start(2):match.end(2)]
        yield "choice", _replaced(line, match, f" ? {second} : {first}")
    if STATEMENT.match(code.rstrip()):
        yield "statement", line[:len(line) - len(line.lstrip())] + ";"
    if match := RETURN.match(code.rstrip()):
        yield "return", match[1] + "{};"


def faults_in(source):
    """All faults that fit into the text of a source file, in its order. Some will not compile."""
    found = []
    in_raw_text = False
    for number, line in enumerate(source.split("\n"), 1):
        opens, closes = 'R"' in line, re.search(r'\)\w*"', line) is not None
        if not in_raw_text and not opens and not NOT_CODE.match(line):
            seen = {line}
            for kind, after in _in_line(line):
                if after not in seen:
                    seen.add(after)
                    found.append(Fault(number, line, after, kind))
        in_raw_text = (in_raw_text or opens) and not closes
    return found
