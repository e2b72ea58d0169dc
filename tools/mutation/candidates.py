# SPDX-License-Identifier: MIT
"""Places in C++ sources at which a small change of the meaning is possible, by Clang's syntax tree."""
import json
import shlex
from dataclasses import dataclass
from pathlib import Path

from clang import cindex
from clang.cindex import CursorKind as Kind

# What takes an operator's place: its neighbour at the boundary, or its opposite.
OTHER_OPERATOR = {
    '+': '-', '-': '+', '*': '/', '/': '*', '%': '*',
    '<': '<=', '<=': '<', '>': '>=', '>=': '>', '==': '!=', '!=': '==',
    '&&': '||', '||': '&&', '&': '|', '|': '&', '<<': '>>', '>>': '<<',
}
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.FUNCTION_TEMPLATE,
             Kind.DESTRUCTOR, Kind.LAMBDA_EXPR, Kind.CONVERSION_FUNCTION}


@dataclass(frozen=True)
class Mutant:
    """Bytes start to end of a file, and the text that stands there while the mutant lives. {alive}
    in it is the question whether this mutant is the one that is tried."""
    file: str
    start: int
    end: int
    line: int
    replacement: str
    what: str


def parse(source, command):
    """@param command  the compiler's call as compile_commands.json has it"""
    words = shlex.split(command)
    arguments = [word for word in words[1:] if word.startswith(('-I', '-D', '-std', '-isystem'))]
    for flag in ('-include', '-isystem'):
        for at, word in enumerate(words):
            if word == flag:
                arguments += [flag, words[at + 1]]
    return cindex.Index.create().parse(source, arguments)


def candidates(folder, commands):
    """Every mutant of the sources below the folder, each once, in the order of files and bytes."""
    found = {}
    for entry in json.loads(Path(commands).read_text()):
        source = str(Path(entry['file']).resolve())
        if not source.startswith(str(folder) + '/'):
            continue
        texts = {}
        unit = parse(source, entry['command'])
        for cursor in unit.cursor.get_children():
            if cursor.location.file and str(cursor.location.file).startswith(str(folder)):
                visit(cursor, None, False, texts, found)
    return sorted(found.values(), key=lambda mutant: (mutant.file, mutant.start, mutant.what))


def visit(cursor, parent, in_body, texts, found):
    if cursor.kind in (Kind.STATIC_ASSERT, Kind.CASE_STMT, Kind.ENUM_DECL):
        return
    if cursor.kind in FUNCTIONS:
        words = {token.spelling for token in list(cursor.get_tokens())[:8]}
        if words & {'constexpr', 'consteval'}:
            return
    if cursor.kind == Kind.VAR_DECL:
        words = {token.spelling for token in list(cursor.get_tokens())[:6]}
        if words & {'constexpr', 'static', 'array'}:
            return
    in_body = in_body or cursor.kind == Kind.COMPOUND_STMT
    if in_body and cursor.location.file:
        path = str(cursor.location.file)
        text = texts.setdefault(path, Path(path).read_bytes())
        for mutant in mutants_of(cursor, parent, path, text):
            found.setdefault((path, mutant.start, mutant.what), mutant)
    for child in cursor.get_children():
        visit(child, cursor, in_body, texts, found)


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def mutants_of(cursor, parent, path, text):
    start, end = span(cursor)
    own = text[start:end].decode()
    at = (path, start, end, cursor.extent.start.line)
    if cursor.kind == Kind.BINARY_OPERATOR:
        yield from other_operator(cursor, at, text)
    elif cursor.kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR and is_statement(parent):
        yield Mutant(*at, f'if (!({{alive}})) {escape(own)}', 'assignment left out')
    elif cursor.kind == Kind.CALL_EXPR and is_statement(parent) and own.endswith(')'):
        yield Mutant(*at, f'if (!({{alive}})) {escape(own)}', 'call left out')
    elif cursor.kind == Kind.INTEGER_LITERAL and own.rstrip('uUlL').isdigit():
        yield Mutant(*at, f'({{alive}} ? {own} + 1 : {own})', 'one more')
    elif cursor.kind == Kind.FLOATING_LITERAL and own[:1].isdigit():
        yield Mutant(*at, f'({{alive}} ? {own} * 2 + 1 : {own})', 'twice and one more')
    elif cursor.kind == Kind.IF_STMT:
        yield from other_condition(cursor, path, text)


def is_statement(parent):
    return parent is not None and parent.kind == Kind.COMPOUND_STMT


def escape(text):
    return text.replace('{', '{{').replace('}', '}}')


def other_operator(cursor, at, text):
    children = list(cursor.get_children())
    if len(children) != 2:
        return
    left, right = span(children[0]), span(children[1])
    operator = text[left[1]:right[0]].decode().strip()
    is_pointer = any(child.type.get_canonical().kind == cindex.TypeKind.POINTER
                     for child in children)
    if operator not in OTHER_OPERATOR or is_pointer and operator in '+-':
        return
    a, b = (escape(text[first:last].decode()) for first, last in (left, right))
    other = OTHER_OPERATOR[operator]
    # As many line breaks as before, so that the compiler's messages name the right lines.
    changed = f'({a} {other} {b})'.replace('\n', ' ')
    if '//' not in changed:
        own = escape(text[left[0]:right[1]].decode())
        yield Mutant(*at, f'({{alive}} ? {changed} : ({own}))', f'{operator} becomes {other}')


def other_condition(cursor, path, text):
    condition = next(cursor.get_children())
    start, end = span(condition)
    if condition.kind == Kind.DECL_STMT or not condition.kind.is_expression():
        return
    own = escape(text[start:end].decode())
    yield Mutant(path, start, end, condition.extent.start.line,
                 f'({{alive}}) != static_cast<bool>({own})', 'condition reversed')
