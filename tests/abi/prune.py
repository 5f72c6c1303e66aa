# SPDX-License-Identifier: MIT
"""Reduces what abidw writes to the named classes and what they are made of.

    prune.py NAMES IN.abi OUT.abi     NAMES: with commas between them

Of types from elsewhere stay name and size: what is in them is not this project's to change.
"""
import sys
import xml.etree.ElementTree as ElementTree

CLASSES = ("class-decl", "union-decl")
# What the comparison begins at.
ENTRY = "seeInterface"


def reach(own, by_id):
    """The ids of all types that the own ones name, without those inside of classes from elsewhere."""
    reached = set(own)
    waiting = list(own)
    while waiting:
        element = by_id.get(waiting.pop())
        if element is None or (element.tag in CLASSES and element.get("id") not in own):
            continue
        for part in element.iter():
            for name in ("type-id", "naming-typedef-id"):
                if part.get(name) and part.get(name) not in reached:
                    reached.add(part.get(name))
                    waiting.append(part.get(name))
    return reached


def prune(element, own, reached):
    """Whether anything of it is to stay; the rest is taken out."""
    if element.get("id") in own or ENTRY in (element.get("name"), element.get("mangled-name")):
        return True
    is_reached = element.get("id") in reached
    if is_reached and element.tag not in CLASSES:
        return True
    for child in list(element):
        if not prune(child, own, reached):
            element.remove(child)
    return is_reached or len(element) > 0


def main(names, source, target):
    tree = ElementTree.parse(source)
    by_id = dict((element.get("id"), element) for element in tree.iter() if element.get("id"))
    own = dict((key, element.get("name")) for key, element in by_id.items() if element.get("name") in names.split(",")
               and (element.tag == "enum-decl" or (element.tag == "class-decl" and element.get("size-in-bits"))))
    unseen = set(names.split(",")) - set(own.values())
    if unseen:
        sys.exit("abi: tests/abi/interface.cpp lacks %s" % ", ".join(sorted(unseen)))
    for function in tree.iter("function-decl"):
        if function.get("name") == ENTRY:
            own.update((part.get("type-id"), ENTRY) for part in function)
    prune(tree.getroot(), own, reach(own, by_id))
    tree.write(target, encoding="unicode")


main(*sys.argv[1:])
