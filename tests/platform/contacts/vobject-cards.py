"""Prints what the library vobject reads in each file of cards: one JSON object a line, by file and place in it."""
import hashlib
import json
import sys

import vobject


def one(component, name, part):
    return str(getattr(getattr(component, name).value, part, "")) if hasattr(component, name) else ""


def plain(value, scheme):
    return value[len(scheme):] if value.startswith(scheme) else value


def values(component, name, scheme):
    return [plain(line.value, scheme) for line in component.contents.get(name, [])]


def picture(component):
    values = [line.value for line in component.contents.get("photo", []) if isinstance(line.value, bytes)]
    return hashlib.sha1(values[0]).hexdigest() if values else ""


for path in sys.argv[1:]:
    contents = open(path, "rb").read()
    try:
        text = contents.decode("utf-8")
    except UnicodeDecodeError:
        text = contents.decode("windows-1252")
    name = path.rsplit("/", 1)[-1]
    try:
        for place, card in enumerate(vobject.readComponents(text, allowQP=True)):
            print(json.dumps({
                "file": name,
                "place": place,
                "first": one(card, "n", "given"),
                "last": one(card, "n", "family"),
                "phones": values(card, "tel", "tel:"),
                "emails": values(card, "email", "mailto:"),
                "picture": picture(card),
            }))
    except Exception as error:  # whatever it stumbles over
        print(json.dumps({"file": name, "cannot": f"{type(error).__name__}: {error}"}))
