"""User-perceived characters of a text, from the standard library alone."""
import unicodedata

WHITE_SPACE = ("\t\n\v\f\r \x85\xa0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008"
               "\u2009\u200a\u2028\u2029\u202f\u205f\u3000")


def break_class(ch):
    """The character's class for the boundaries of user-perceived characters (UAX #29).

    Taken from general categories and a few ranges instead of the full tables. Not covered: the
    prepended signs (U+0600 and its kin), conjuncts of the Indic scripts, the Thai and Lao vowels
    AM, the few spacing marks that do not extend, and pictographs outside the ranges below.
    """
    code, category = ord(ch), unicodedata.category(ch)
    if ch == "\u200d":
        return "joiner"
    if (category in ("Mn", "Me", "Mc") or code in (0x200C, 0xFF9E, 0xFF9F)
            or 0x1F3FB <= code <= 0x1F3FF or 0xE0020 <= code <= 0xE007F):
        return "extend"
    if category in ("Cc", "Cf", "Zl", "Zp"):
        return "control"
    if 0x1F1E6 <= code <= 0x1F1FF:
        return "regional"
    if 0x1100 <= code <= 0x115F or 0xA960 <= code <= 0xA97C:
        return "L"
    if 0x1160 <= code <= 0x11A7 or 0xD7B0 <= code <= 0xD7C6:
        return "V"
    if 0x11A8 <= code <= 0x11FF or 0xD7CB <= code <= 0xD7FB:
        return "T"
    if 0xAC00 <= code <= 0xD7A3:
        return "LV" if (code - 0xAC00) % 28 == 0 else "LVT"
    if (0x1F000 <= code <= 0x1FAFF or 0x2600 <= code <= 0x27BF or 0x2B00 <= code <= 0x2BFF
            or 0x2190 <= code <= 0x21FF or 0x2300 <= code <= 0x23FF
            or code in (0xA9, 0xAE, 0x203C, 0x2049, 0x2122, 0x2139)):
        return "pictograph"
    return "other"


HANGUL_JOINS = {"L": ("L", "V", "LV", "LVT"), "LV": ("V", "T"), "V": ("V", "T"),
                "LVT": ("T",), "T": ("T",)}


def characters(text):
    """The user-perceived characters of a text, as a list of strings."""
    result = []
    for ch in text:
        if result and joins(result[-1], ch):
            result[-1] += ch
        else:
            result.append(ch)
    return result


def joins(cluster, ch):
    """Whether `ch` continues the user-perceived character `cluster`."""
    before, after = break_class(cluster[-1]), break_class(ch)
    if cluster[-1] == "\r" and ch == "\n":
        return True
    if before == "control" or after == "control":
        return False
    if after in HANGUL_JOINS.get(before, ()):
        return True
    if after in ("extend", "joiner"):
        return True
    if before == "joiner" and after == "pictograph":
        body = cluster[:-1]
        while body and break_class(body[-1]) == "extend":
            body = body[:-1]
        return bool(body) and break_class(body[-1]) == "pictograph"
    return before == "regional" and after == "regional" and len(cluster) == 1


def count(text):
    return len(characters(text))
