#!/usr/bin/env python3
"""make_settings_pane.py OUT: the page in the Settings app, a property list without any code.

Every control writes its key to the library's domain and posts the reload signal after each change.
"""
import plistlib
import sys

DOMAIN = 'com.qvethmar.corvalenpro'
RELOAD = 'bfaK8ayWXeXMQum'
TITLE = 'Corvalen Pro'  # the greeting opens the page by this name


def group(label, help_text):
    return {'cell': 'PSGroupCell', 'label': label, 'footerText': help_text}


def switch(key, label):
    return {'cell': 'PSSwitchCell', 'key': key, 'label': label, 'default': False,
            'defaults': DOMAIN, 'PostNotification': RELOAD}


def app_chooser(key, label):
    """AppList's own page of apps, one of which is chosen; its identifier is what is stored."""
    return {'cell': 'PSLinkListCell', 'detail': 'ALApplicationPreferenceViewController',
            'bundle': 'AppList', 'isController': True, 'label': label, 'key': key,
            'ALNavigationTitle': label, 'ALSettingsPath':
                f'/var/mobile/Library/Preferences/{DOMAIN}.plist',
            'ALSettingsKey': key, 'ALSingleEnabledMode': True, 'ALAllowsDeselection': True,
            'ALChangeNotification': RELOAD, 'ALSectionDescriptors': [
                {'title': 'User Applications', 'predicate': 'isSystemApplication = FALSE',
                 'cell-class-name': 'ALCheckCell', 'icon-size': 29,
                 'suppress-hidden-apps': True},
                {'title': 'System Applications', 'predicate': 'isSystemApplication = TRUE',
                 'cell-class-name': 'ALCheckCell', 'icon-size': 29,
                 'suppress-hidden-apps': True}]}


ITEMS = [
    group('Player', 'While nothing is loaded, Play starts the player chosen here instead of Music. '
          'With no player chosen, Play does nothing.'),
    switch('iea9AQXrEmhSZ4u', 'Enabled'),
    app_chooser('2I8UQMOAwU5nnNZt', 'Preferred Player'),
    group('Starting', 'A hidden start leaves you where you are. Without it the player opens, after '
          'the passcode if the device is locked.'),
    switch('4sySMd4CfPOr0F', 'Start Hidden When Locked'),
    switch('KwI68FtaZGgSizb', 'Start Hidden When Unlocked'),
    switch('ljyr9pMzliGkTNvfm', 'Play a Sound'),
    group('Spotify and Podcasts', 'These players can begin to play by themselves after they were '
          'started. Launched from their icon they can be left alone.'),
    switch('LyyY0YZw4enaXR6S', 'Auto-Play'),
    switch('AiPVzGZ3tdh2fBpXy', 'Not From the Home Screen'),
    group('Headphones', 'Plugging in headphones resumes what is loaded, or starts the player.'),
    switch('I9gqmWG8wXu6', 'Play When Plugged In'),
    group('Instead of Music', 'This app opens wherever Music would, while Music holds the track. '
          'Quitting it in the app switcher ends Music too.'),
    app_chooser('RjNkaiHs98230Xx', 'Music Replacement'),
]

PANE = {
    'entry': {'cell': 'PSLinkCell', 'label': TITLE, 'isController': False},
    'items': ITEMS,
    'title': TITLE,
}


def main():
    with open(sys.argv[1], 'wb') as out:
        plistlib.dump(PANE, out)


if __name__ == '__main__':
    main()
