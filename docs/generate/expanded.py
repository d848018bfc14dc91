#!/usr/bin/env python3
"""Doxygen's filter: a header with its generated parts written out, each under its description.

    expanded.py HEADER

The accessors of an attribute take the attribute's description, behind what the macro's comment in
Tyl/Accessors.h says of each. An enumeration and its enumerators take what their list says. Lines
stay where they are, so that a warning names the right one.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
TYL = ROOT / "Platform" / "Tyl"

COMMENT = r"(?P<comment>(?:^[ \t]*///[^\n]*\n)*)"
INVOCATION = re.compile(COMMENT + r"^[ \t]*(?P<macro>TYL_[A-Z_]+)\((?P<arguments>[^()]*(?:\([^()]*\)"
                        r"[^()]*)*)\)[ \t]*$", re.MULTILINE)
DEFINITION = re.compile(COMMENT + r"^#define (?P<macro>\w+)\((?P<parameters>[^)]*)\)"
                        r"(?P<body>(?:[^\n]*\\\n)*[^\n]*)$", re.MULTILINE)
LISTED = re.compile(r"X\(([^()]*)\)\s*(?:/\*\s*(.*?)\s*\*/)?")
BULLET = re.compile(r"^- (?P<calls>`[^`]*`(?:, `[^`]*`)*)(?:, [^:]*)?: (?P<text>.*)$")
CALL = re.compile(r"`(?:static )?(?:\w+::)*(\w+|operator<<)(?:\((.*?)\))?`")
ACCESSOR = re.compile(r"^\s*(?P<head>[^(){}]*?\bname(?P<suffix>(?:##\w+)?)\((?P<parameters>[^)]*)\)"
                      r"(?: const)?) \{$")
MEMBERS = re.compile(r"^\s*using MemberNode = .*;$")


def text_of(comment):
    """The lines of a comment without their slashes."""
    return [re.sub(r"^\s*/// ?", "", line) for line in comment.splitlines()]


def sentence(text):
    text = text.strip().rstrip(";")
    return text[:1].upper() + text[1:] + ("" if text.endswith(".") else ".")


def definitions(header):
    return {found["macro"]: found for found in DEFINITION.finditer(header)}


def bullets(comment):
    """What a macro's comment says of each function that it makes: (name, number of arguments) ->
    text."""
    lines = []
    for line in text_of(comment):
        if line.startswith("- ") or not lines:
            lines.append(line)
        else:
            lines[-1] += " " + line.strip()
    said = {}
    for bullet in filter(None, map(BULLET.match, lines)):
        for name, arguments in CALL.findall(bullet["calls"]):
            count = len([one for one in arguments.split(",") if one.strip()])
            said[name, count] = sentence(bullet["text"])
    return said


MACROS = definitions((TYL / "Accessors.h").read_text(encoding="utf-8"))


def described(brief, details=""):
    """A comment in one line."""
    return f"/** @brief {brief} {'@details ' + details if details else ''} */ "


def with_values(text, values):
    """The text of a macro's comment with what stands for its parameters."""
    return re.sub(r"`(\w+)`", lambda found: f"`{values.get(found[1], found[1])}`", text)


def about(details, description):
    """What a function does, and the attribute that it does it with, in one sentence."""
    begins_a_sentence = description[1:2].islower() or description[1:2] == " "
    first = description[0].lower() if begins_a_sentence else description[0]
    return f"{details.removesuffix('.')}: {first}{description[1:]}"


def accessors(macro, arguments, description):
    """The declarations of an attribute, in one line."""
    parameters = [one.strip() for one in macro["parameters"].split(",")]
    values = dict(zip(parameters, arguments))
    said = bullets(macro["comment"])
    declared = ["public:"]
    for line in macro["body"].replace("\\\n", "\n").splitlines():
        if line.strip() == "private:":
            break
        accessor = ACCESSOR.match(line.rstrip())
        if accessor:
            count = len([one for one in accessor["parameters"].split(",") if one.strip()])
            details = with_values(said["name" + accessor["suffix"].removeprefix("##"), count],
                                  values)
            declaration = accessor["head"].strip() + ";"
        elif MEMBERS.match(line.rstrip()):
            details, declaration = "The type of the collection's members.", line.strip()
        else:
            continue
        declaration = re.sub(r"\b(" + "|".join(parameters) + r")\b(?=##|\b)",
                             lambda found: values[found[1]], declaration).replace("##", "")
        declared.append((described(about(details, description)) if description else "")
                        + declaration)
    return " ".join(declared)


def enumerators(listed):
    """The enumerators of a list, each with its comment."""
    rows = []
    for row, comment in LISTED.findall(listed["body"].replace("\\\n", "\n")):
        name, number = (part.strip() for part in row.split(","))
        rows.append(f"{name} = {number}, " + (f"/**< {sentence(comment)} */ " if comment else ""))
    return "".join(rows)


def conversions(type_name):
    return (described(f"The enumerator's name, or \"{type_name.split('::')[-1].removesuffix('Enum')}"
                      "(N)\" for a number N that is none's.")
            + f"::Verda::String stringValue({type_name} value); "
            + described("Reads a name from a text reader into `result`.",
                        "Throws Verda::RangeError, and leaves `result` alone, when it is none.")
            + f"void sequenceToValue(::Tyl::TextReader& text, {type_name}& result); "
            + described("Prints what `stringValue` gives.")
            + f"std::ostream& operator<<(std::ostream& out, {type_name} value); "
            + described("The enumeration's table of names and numbers.")
            + f"const ::Tyl::EnumerationTable& enumerationTableOf({type_name});")


def instances(type_name, name, number, static=""):
    fault = "Throws Verda::RangeError when there is none."
    return (described("The enumerator of that name.", fault)
            + f"{static}{type_name} {name}Instance(const ::Verda::String& name); "
            + described("The enumerator of that number.", fault)
            + f"{static}{type_name} {name}Instance({number} number); ")


def entity(entity_name):
    return ("public: " + described("The entity's type at run time.")
            + "const ::Verda::TypeData& typeData() const override; "
            + described(f"A new `{entity_name}`, made with these constructor arguments.")
            + "template <typename... Args> static ::Verda::Ptr<" + entity_name + "> "
            + entity_name + "Is(Args&&... args);")


def factory(name, entity_name):
    return (described(f"A new `{entity_name}`, made with these constructor arguments.")
            + f"template <typename... Args> ::Verda::Ptr<{entity_name}> {name}(Args&&... args);")


def enumeration(name, storage, listed):
    return (described(" ".join(text_of(listed["comment"])))
            + f"enum class {name} : {storage} {{ {enumerators(listed)} }}; "
            + instances(name, name, "::Verda::U32") + conversions(name))


def enumeration_holder(holder, storage, number, listed):
    about, type_name = " ".join(text_of(listed["comment"])), f"{holder}Enum"
    return (described(about) + f"class {holder} : public ::Verda::Node {{ {entity(holder)} "
            + described(about) + f"enum {type_name} : {storage} {{ {enumerators(listed)} }}; "
            + instances(type_name, type_name, number, "static ")
            + described("The enumeration's table of names and numbers.")
            + "static const ::Tyl::EnumerationTable& enumerationTable(); }; "
            + conversions(f"{holder}::{type_name}"))


def constant_holder(holder, listed):
    constants = ""
    for row, comment in LISTED.findall(listed["body"].replace("\\\n", "\n")):
        kind, name, value = (part.strip() for part in row.split(","))
        constants += ((described(sentence(comment)) if comment else "")
                      + f"static constexpr ::Verda::{kind} {name}() {{ return {value}; }} ")
    return (described(" ".join(text_of(listed["comment"]))) + f"class {holder} {{ public: {constants}"
            + described("All of them, in declared order.")
            + "static std::span<const ::Tyl::Constant> constants(); };")


MADE = {"TYL_ENTITY": entity, "TYL_FACTORY": factory, "TYL_ENUMERATION": enumeration,
        "TYL_ENUMERATION_HOLDER": enumeration_holder, "TYL_CONSTANT_HOLDER": constant_holder}


def on_the_same_lines(found, text):
    return "\n" * found[0].count("\n") + text


def expanded(header):
    """The header's text with its macros written out."""
    lists = {name: found for name, found in definitions(header).items() if name.endswith("_LIST")}

    def made(found):
        arguments = [one.strip() for one in re.split(r",(?![^<>]*>)", found["arguments"])]
        arguments = [lists.get(one, one) for one in arguments]
        if found["macro"] in MADE:
            return on_the_same_lines(found, MADE[found["macro"]](*arguments))
        if found["macro"] in MACROS:
            description = " ".join(text_of(found["comment"]))
            return on_the_same_lines(found, accessors(MACROS[found["macro"]], arguments,
                                                      description))
        return found[0]

    without_lists = DEFINITION.sub(
        lambda found: "\n" * found[0].count("\n") if found["macro"] in lists else found[0], header)
    return INVOCATION.sub(made, without_lists)


if __name__ == "__main__":
    print(expanded(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8")), end="")
