#!/usr/bin/env python3
"""random_devices.py SIMULATOR IMAGE [SEED [COUNT]]: random situations, played three ways.

Each is a random sequence of commands, sensible or not, typed into the simulator's shell. The host build
and both slices of the device binary must give the same bytes; no process may crash, no reference be
lost, nothing unknown be posted. A failing situation is shrunk and printed, ready to be kept.
"""
import random
import re
import subprocess
import sys

PLAYERS = ['com.spotify.client', 'com.apple.podcasts']
APPS = PLAYERS + ['com.garmin.connect.mobile', 'com.pandora', 'com.example.notes',
                  'com.apple.Music']
VERSIONS = ['847.19', '847.2', '847.24', '899.99', '900.0', '1145.14', '1145.15', '1240.09',
            '1240.1', '1242.13', '1280.0', '1280.01']
SWITCHES = ['iea9AQXrEmhSZ4u', '4sySMd4CfPOr0F', 'KwI68FtaZGgSizb', 'ljyr9pMzliGkTNvfm',
            'LyyY0YZw4enaXR6S', 'AiPVzGZ3tdh2fBpXy', 'I9gqmWG8wXu6']
TEXTS = ['2I8UQMOAwU5nnNZt', 'RjNkaiHs98230Xx']
MARKERS = ['feo63OPBmERAd2000UpdRdCAND', 'hasShownWAL']
SIGNALS = ['bfaK8ayWXeXMQum', 'QjnUR4g9fc9hLq', 'VNutj2BhJMTGTwVk', 'FejJ91yPhXo8E',
           'GYbIKwUwyBsCan1l', 'YHePE3bJB3diJ1T', 'RjZoLhphi82WYz']
POSTED = set(SIGNALS) | {'PV2qdgEyDYK8gUci'}
CLASSES = ['SBMediaController', 'SBApplicationController', 'SBLockScreenManager', 'FBScene',
           'SBApplication', 'ALApplicationList', 'UIAlertView', 'MPUMediaControlsTitlesView',
           'AVSystemController', 'TUCallCenter', 'ACAccountStore', 'SBBacklightController',
           'StateController', 'SPTPlayer', 'MTPlayerController', 'UIApplication']
ADD_ONS = ['Acapella', 'Acapella2', 'Auxo', 'MiniPlayer']


def yes_no(draw):
    return draw.choice(['yes', 'no'])


def setting(draw):
    kind = draw.random()
    if kind < 0.6:
        value = draw.choice(['yes', 'yes', 'yes', 'no', '1', '0', '"YES"', '"0"', 'absent'])
        return f'prefs {draw.choice(SWITCHES)} {value}'
    if kind < 0.9:
        value = draw.choice([f'"{a}"' for a in APPS] + ['""', '5', 'yes', 'absent'])
        return f'prefs {draw.choice(TEXTS)} {value}'
    return f'prefs {draw.choice(MARKERS)} {draw.choice(["yes", "no", "absent"])}'


# What may be typed, with its weight.
COMMANDS = [
    (6, setting),
    (4, lambda d: 'announce'),
    (2, lambda d: 'boot'),
    (8, lambda d: f'advance {d.choice(["0.36", "0.5", "1", "1", "2", "5", "30", "61"])}'),
    (3, lambda d: f'locked {yes_no(d)}'),
    (1, lambda d: f'screen {d.choice(["on", "off"])}'),
    (1, lambda d: f'call {yes_no(d)}'),
    (1, lambda d: f'version {d.choice(VERSIONS)}'),
    (2, lambda d: f'app {d.choice(APPS)} "Name {d.randrange(9)}"'),
    (1, lambda d: f'unlist {d.choice(APPS)}'),
    (1, lambda d: f'no-class {d.choice(CLASSES)}'),
    (1, lambda d: f'addon {d.choice(ADD_ONS)}'),
    (1, lambda d: d.choice(['prefs-remove', 'prefs-file "garbage"', 'prefs-readonly yes',
                            'prefs-readonly no'])),
    (2, lambda d: f'front {d.choice(APPS + ["none"])}'),
    (1, lambda d: f'running {d.choice(APPS)} {yes_no(d)}'),
    (3, lambda d: f'track {d.choice(["none", "none"] + [f"{a} {s}" for a in APPS for s in ("playing", "paused")])}'),
    (1, lambda d: f'player {d.choice(PLAYERS)} {d.choice(["never", "after 1", "after 3"])}'),
    (1, lambda d: f'account a{d.randrange(5)}'),
    (1, lambda d: f'network {d.choice(["0x2", "0x0", "0x26", "0x36", "0x40036", "unavailable"])}'),
    (3, lambda d: f'start {d.choice(APPS)}'),
    (3, lambda d: f'end {d.choice(APPS)}'),
    (3, lambda d: f'open {d.choice(APPS)} {d.choice(["foreground", "suspended"])}'),
    (8, lambda d: f'tap-transport {d.choice([3, 3, 4, 4, 5])}'),
    (3, lambda d: 'tap-title'),
    (4, lambda d: f'tap-icon {d.choice(APPS)}'),
    (5, lambda d: f'remote {d.choice([0, 0, 1, 2, 2, 4])}'),
    (3, lambda d: f'remote {d.choice([0, 1, 2])} in {d.choice(APPS)}'),
    (1, lambda d: 'new-controller'),
    (2, lambda d: f'watch {d.randrange(5)}'),
    (3, lambda d: f'headphones {d.choice(["in", "in", "out"])}'),
    (1, lambda d: f'now-playing {d.choice(["yes", "nil"])}'),
    (2, lambda d: f'process-launched {d.choice(APPS)}'),
    (2, lambda d: f'quit-card {d.choice(APPS)}'),
    (4, lambda d: 'unlock'),
    (2, lambda d: f'passcode {yes_no(d)} {yes_no(d)} {yes_no(d)}'),
    (1, lambda d: 'display-off'),
    (1, lambda d: 'drag-lock-screen'),
    (3, lambda d: f'title-view {d.choice(["new", "new", "free"])} v{d.randrange(4)}'),
    (1, lambda d: f'title-view show v{d.randrange(4)} "Title"'),
    (2, lambda d: f'widget {d.choice(["Acapella", "Acapella2", "MiniPlayer", "Auxo com.apple.Music no-cell", "Auxo com.apple.Music cell"])}'),
    (3, lambda d: f'press {d.choice([0, 1, 1, 2])}'),
    (2, lambda d: f'post "{d.choice(SIGNALS)}"'),
]


def situation(draw):
    weights = [weight for weight, _ in COMMANDS]
    lines = [f'app {a} "{a}"' for a in APPS[:5]]
    lines += [f'version {draw.choice(VERSIONS[1:-1])}', 'prefs iea9AQXrEmhSZ4u yes',
              f'prefs 2I8UQMOAwU5nnNZt "{draw.choice(APPS)}"', 'boot']
    for _ in range(draw.randrange(10, 60)):
        lines.append(draw.choices(COMMANDS, weights)[0][1](draw))
    return lines


def play(simulator, lines, options):
    run = subprocess.run([simulator, 'shell', '--leaks', *options], input='\n'.join(lines) + '\n',
                         capture_output=True, text=True, timeout=300)
    return run.returncode, run.stdout, run.stderr


def fault(simulator, image, lines):
    """What is wrong with a situation, or None."""
    host = play(simulator, lines, [])
    if host[0] != 0:
        return f'exit status {host[0]}: {host[2][-300:]}'
    if ' crash: ' in host[1]:
        return 'a crash: ' + re.search(r'.* crash: .*', host[1])[0]
    for name in re.findall(r'notify_post\("([^"]*)"\)', host[1]):
        if name not in POSTED:
            return f'{name} was posted'
    if play(simulator, lines, []) != host:
        return 'two runs differ'
    for slice_name in ('arm64', 'armv7') if image else ():
        if play(simulator, lines, ['--image', image, '--slice', slice_name]) != host:
            return f'{slice_name} differs from the host'
    return None


def shrunk(simulator, image, lines):
    """The shortest that still fails, by leaving lines out."""
    at = 0
    while at < len(lines):
        shorter = lines[:at] + lines[at + 1:]
        if fault(simulator, image, shorter):
            lines = shorter
        else:
            at += 1
    return lines


def main():
    simulator, image = sys.argv[1:3]
    seed, count = (int(a) for a in (sys.argv[3:5] + ['1', '60'][len(sys.argv) - 3:]))
    for number in range(seed, seed + count):
        lines = situation(random.Random(number))
        what = fault(simulator, image, lines)
        if what:
            print(f'# seed {number}: {what}')
            print('\n'.join(shrunk(simulator, image, lines)))
            sys.exit(1)
    print(f'{count} random situations from seed {seed} on, each three ways: nothing found')


if __name__ == '__main__':
    main()
