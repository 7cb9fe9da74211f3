"""Makes the pseudo-language of the resource module from the English script.

Usage: pseudo_language.py ENGLISH.rc PSEUDO.rc

Every text is the English one in brackets, with accents, and 40 % longer; one of up to ten
characters is twice as long. What is no word stays as it is: conversions (%s), mnemonics, escapes
and with them the ends of lines, and the tags and entities of rich text.
"""

import math
import re
import sys

ACCENTS = str.maketrans("ACDEINOSUYZaceinosuyz", "ÅÇÐÉÎÑÖŠÛÝŽåçéîñöšûýž")
SHORT = 10  # characters

# The system's own words, which are compared with what it shows.
STATED = {"IDS_CAPS_LOCK_SYSTEM_BEGIN"}

LITERAL = r'"(?:[^"\\]|\\.)*"'
# A name and its text, in one or more literals. The names are those of macros and of strings.
TEXT = re.compile(rf"\b((?:TEXT|IDS)_\w+)((?:[ \n]|\\\n)+)({LITERAL}(?:(?:[ \n]|\\\n)+{LITERAL})*)")
KEPT = re.compile(r"\\x[0-9A-Fa-f]{2}|\\.|%.|<[^<>]*>|&\w+;|&")


def pieces(text):
    """The text's words and what is kept, in turns."""
    end = 0
    for kept in KEPT.finditer(text):
        yield text[end:kept.start()], kept.group()
        end = kept.end()
    yield text[end:], ""


def lengthened(words, wanted):
    """The words with so many characters more, which go to their vowels in turn."""
    vowels = [at for word in words for at, letter in enumerate(word) if letter.lower() in "aeiouy"]
    if not vowels:
        return words
    each, rest = divmod(wanted, len(vowels))
    longer, seen = [], 0
    for word in words:
        letters = []
        for letter in word:
            more = 0
            if letter.lower() in "aeiouy":
                # Spread evenly over the text, so that every line of it grows.
                more = each + ((seen + 1) * rest // len(vowels) - seen * rest // len(vowels))
                seen += 1
            letters.append(letter + letter.lower() * more)
        longer.append("".join(letters))
    return longer


def pseudo(text):
    lead = text[:len(text) - len(text.lstrip(" "))]
    words, kept = zip(*pieces(text[len(lead):]))
    # An escape is one character.
    length = len(lead) + sum(len(word) + (1 if keep[:1] == "\\" else len(keep))
                             for word, keep in zip(words, kept))
    factor = 2 if length <= SHORT else 1.4
    longer = lengthened(words, max(0, math.ceil(length * factor) - length - len("[]")))
    translated = "".join(word.translate(ACCENTS) + keep for word, keep in zip(longer, kept))
    return f"{lead}[{translated}]"


def joined(literals):
    return "".join(literal[1:-1] for literal in re.findall(LITERAL, literals))


def texts(script):
    """Each text of a script by its name, as it is written there."""
    return {match[1]: joined(match[3]) for match in TEXT.finditer(script)}


def replaced(match):
    name, space, literals = match.groups()
    return match.group() if name in STATED else f'{name}{space}"{pseudo(joined(literals))}"'


def read(path):
    with open(path, encoding="cp1252", newline="") as file:
        return file.read()


def main(english, result):
    with open(result, "w", encoding="cp1252", newline="") as file:
        file.write(TEXT.sub(replaced, read(english)))


if __name__ == "__main__":
    main(*sys.argv[1:])
