#!/usr/bin/env python3
"""What the package and the repository's pages say of their publisher, who alone knows it.

CORVALEN_CONTACT is the mail address of whoever answers for the package, CORVALEN_URL the address of the
repository on the web. Neither has a default: what is not given is not mentioned.
Run by itself, it prints what is left out.
"""
import os
import pathlib
import re
import sys

VERSION = pathlib.Path(__file__).resolve().parents[2] / 'VERSION'
NOT_GIVEN = {
    'CORVALEN_CONTACT': 'Maintainer and Author have no address',
    'CORVALEN_URL': 'there are no Homepage and Depiction',
}


def given(variable, pattern, meaning):
    """The variable's text, or None if it is not set; ends the build on anything but `meaning`."""
    text = os.environ.get(variable, '').strip()
    if text and not re.fullmatch(pattern, text):
        sys.exit(f'{variable} must be {meaning}, not "{text}"')
    return text or None


def values():
    """What a template may ask for; None where it was not given."""
    url = given('CORVALEN_URL', r'https?://[^\s<>"]+', 'an address that starts with http:// or https://')
    return {'VERSION': VERSION.read_text().strip(), 'URL': url and url.rstrip('/'),
            'CONTACT': given('CORVALEN_CONTACT', r'[^\s<>@"]+@[^\s<>@"]+\.[^\s<>@".]+', 'a mail address')}


def say_what_is_not_given():
    for variable, consequence in NOT_GIVEN.items():
        if not os.environ.get(variable, '').strip():
            print(f'{variable} is not set: {consequence}.', file=sys.stderr)


def filled(template, known):
    """The template with each @NAME@ replaced; without the lines that ask for what is not known."""
    lines = []
    for line in template.splitlines():
        asked = re.findall(r'@([A-Z]+)@', line)
        if all(known[name] is not None for name in asked):
            lines.append(re.sub(r'@([A-Z]+)@', lambda name: known[name[1]], line).rstrip())
    return '\n'.join(lines) + '\n'


if __name__ == '__main__':
    say_what_is_not_given()
