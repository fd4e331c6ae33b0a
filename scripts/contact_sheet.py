#!/usr/bin/env python3
"""Draws pictures with the command line tool and puts them on one sheet, which the tool draws, too.

  contact_sheet.py TOOL FOLDER [TILE]       TILE: pixels of a picture's side, default 184
"""
import base64
import glob
import html
import os
import subprocess
import sys

COLUMNS, GAP, CAPTION, HEADING = 6, 16, 22, 44
TILE = int(sys.argv[3]) if len(sys.argv) > 3 else 184
WIDE = ['--size', f'{TILE}x{TILE * 2 // 3}']
DIAL = 'examples/svg/dial.svg'
# What the plain control can do: caption, source, arguments.
ABILITIES = [
    ('keeps its aspect ratio', DIAL, WIDE),
    ('Stretch', DIAL, [*WIDE, '--set', 'Stretch=true']),
    ('Opacity', DIAL, ['--set', 'Opacity=0.35']),
    ('disabled', DIAL, ['--set', 'Enabled=false']),
    ('Transform', DIAL, ['--set', f'Transform=matrix(0.82 0.26 -0.3 0.7 {TILE / 4} {TILE / 12})']),
    ('48 pixels', DIAL, ['--size', '48x48']),
]
# Instruments with values that show what they are, and looks that they all have.
INSTRUMENTS = [
    ('Speedometer', 'TVZSpeedometer', ['--set', 'Value=87']),
    ('Altimeter', 'TVZCircularAltimeter', ['--set', 'Value=12345']),
    ('Barometer', 'TVZCircularBarometer', ['--set', 'Value=1013']),
    ('Fuel gauge', 'TVZCircularFuelGauge', ['--set', 'Value=62']),
    ('Circular speedometer', 'TVZCircularSpeedometer', ['--set', 'Value=74']),
    ('Circular clock', 'TVZCircularClock', ['--set', 'Time=10:08:36']),
    ('Analog calendar', 'TVZAnalogCalendar', ['--set', 'Time=2026-03-15']),
]
LOOKS = [
    ('simple design', 'TVZSpeedometer', ['--set', 'Value=87', '--set', 'Design=sdSimple']),
    ('gradients off', 'TVZSpeedometer', ['--set', 'Value=87', '--set', 'EnableGradients=false']),
    ('own colours', 'TVZSpeedometer', ['--set', 'Value=87', '--set', 'FrameColor=0xFF274C77',
                                      '--set', 'BackfaceColor=0xFF102A43', '--set', 'NeedleFillColor=0xFFFF7043']),
    ('simple barometer', 'TVZCircularBarometer', ['--set', 'Value=1013', '--set', 'Design=sdSimple']),
    ('white dial', 'TVZCircularClock', ['--set', 'Time=10:08:36', '--set', 'BackfaceColor=0xFFF7F4EA',
                                       '--set', 'LabelsFillColor=0xFF22262B', '--set', 'LabelsStrokeColor=0x00000000',
                                       '--set', 'MajorMarkersColor=0xFF22262B', '--set', 'MinorMarkersColor=0xFF22262B',
                                       '--set', 'BigHandColor=0xFF22262B', '--set', 'LittleHandColor=0xFF22262B',
                                       '--set', 'ThinHandColor=0xFFC62828']),
    ('disabled gauge', 'TVZCircularFuelGauge', ['--set', 'Value=62', '--set', 'Enabled=false']),
]


def title_of(path):
    return os.path.splitext(os.path.basename(path))[0]


def sections():
    """Heading, and the tiles under it as caption, source, arguments."""
    return [
        ('Instruments', INSTRUMENTS),
        ('Looks', LOOKS),
        ('Samples', [(title_of(path), path, []) for path in sorted(glob.glob('examples/svg/*.svg'))]),
        ('The control', ABILITIES),
    ]


def draw(tool, source, arguments, png):
    if '--size' not in arguments:
        arguments = ['--size', f'{TILE}x{TILE}', *arguments]
    os.makedirs(os.path.dirname(png), exist_ok=True)
    subprocess.run([tool, 'render', source, *arguments, '-o', png], check=True)


def png_size(png):
    with open(png, 'rb') as file:
        head = file.read(24)
    return int.from_bytes(head[16:20], 'big'), int.from_bytes(head[20:24], 'big')


def tile(png, caption, x, y):
    width, height = png_size(png)
    with open(png, 'rb') as file:
        data = base64.b64encode(file.read()).decode()
    left, top = x + (TILE - width) // 2, y + (TILE - height) // 2
    return (f'<image x="{left}" y="{top}" width="{width}" height="{height}" href="data:image/png;base64,{data}"/>\n'
            f'<text x="{x + TILE / 2}" y="{y + TILE + 16}" text-anchor="middle">{html.escape(caption)}</text>\n')


def sheet(tool, folder):
    """The sheet as SVG."""
    body, y = '', GAP // 2
    for heading, tiles in sections():
        if not tiles:
            continue
        body += f'<text class="heading" x="{GAP}" y="{y + 30}">{html.escape(heading)}</text>\n'
        y += HEADING
        for index, (caption, source, arguments) in enumerate(tiles):
            column = index % COLUMNS
            if index and column == 0:
                y += TILE + CAPTION + GAP
            png = os.path.join(folder, heading.lower().replace(' ', '-'), caption.replace(' ', '-') + '.png')
            draw(tool, source, arguments, png)
            body += tile(png, caption, GAP + column * (TILE + GAP), y)
        y += TILE + CAPTION + GAP
    width = GAP + COLUMNS * (TILE + GAP)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{y}">\n'
            '<style>text { font: 12px "DejaVu Sans", sans-serif; fill: #46505f }\n'
            '.heading { font-size: 20px; font-weight: bold; fill: #1f2733 }</style>\n'
            f'<rect width="100%" height="100%" fill="#e7ebf1"/>\n{body}</svg>\n')


def main():
    tool, folder = sys.argv[1:3]
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, 'gallery.svg')
    with open(path, 'w', encoding='utf-8') as file:
        file.write(sheet(tool, folder))
    subprocess.run([tool, 'render', path, '-o', os.path.join(folder, 'gallery.png')], check=True)


if __name__ == '__main__':
    main()
