#!/usr/bin/env python3
"""Draws pictures with the command line tool and puts them on sheets, which the tool draws, too.

  contact_sheet.py TOOL FOLDER [--docs DOCS] [--tile PIXELS]

Writes the pictures and the sheets instruments.png, emblems.png and control.png into FOLDER; with --docs the sheets,
and gallery.md around them, into DOCS as well.
"""
import argparse
import base64
import glob
import html
import json
import os
import shutil
import subprocess

GAP, CAPTION, HEADING = 12, 22, 44
INK, FAINT = '#1f2733', '#5c6675'
DIAL = 'examples/svg/dial.svg'
DECORATIONS = ('Star Modern Dragon Anchor Wheel Plane PlaneTop Jet Car SimpleBoat Globe FuelTank Bolt Biohazard Wifi '
               'Cloudy Sunny Stormy Rainy Snowy PartlyCloudy Winter Spring Summer Autumn').split()
# Where an instrument stands so that one sees what it is, by what its main value tells; a number on a published scale
# stands at a share of it.
PLACES = {'TimeOfDay': '10:08:36', 'Date': '2026-03-15', 'Height': '12345', 'Heading': '40', 'Lamps': '[ltGreen]',
          'Switch': 'true'}
SHARES = {'Speed': 0.36, 'Pressure': 0.63, 'Temperature': 0.55, 'Supply': 0.62, 'Charge': 0.72}


def everywhere(color, *names):
    return [f'{name}={color}' for name in names]


FRAMES = ('FrameColor', 'BoltColor', 'KnobColor', 'KnobFillColor')
PRINT = ('LabelsFillColor', 'MajorMarkersColor', 'MinorMarkersColor', 'MarkersFillColor')
OUTLINES = ('LabelsStrokeColor', 'MarkersStrokeColor')
HANDS = ('BigHandColor', 'LittleHandColor', 'NeedleFillColor')
IVORY = [*everywhere('0xFFB8923A', *FRAMES), 'BackfaceColor=0xFFF6F0DF', *everywhere('0xFF2A2320', *PRINT, *HANDS),
         *everywhere('0x00000000', *OUTLINES), 'ThinHandColor=0xFFC62828', 'DecorationFillColor=0xFF8A6D3B',
         'NeedleStrokeColor=0x00000000']
MARINE = [*everywhere('0xFF274C77', 'FrameColor'), *everywhere('0xFF6F8FB3', 'BoltColor', 'KnobColor', 'KnobFillColor'),
          'BackfaceColor=0xFF0E2440', *everywhere('0xFFD7E8F7', *PRINT), *everywhere('0xFFFF7043', *HANDS),
          'ThinHandColor=0xFFFFD166', 'DecorationFillColor=0xFF7FB2E5']
NIGHT = [*everywhere('0xFF24272C', *FRAMES), 'BackfaceColor=0xFF0A0B0D', *everywhere('0xFFFFB454', *PRINT),
         *everywhere('0xFFFF4D2E', *HANDS), 'ThinHandColor=0xFFFFB454', 'DecorationFillColor=0xFF9C5A1A',
         'LightColor=0xFFFFE2B8']
PLAIN, SIMPLE, DISABLED = ('default', []), ('simple', ['Design=sdSimple']), ('disabled', ['Enabled=false'])
# By their backgrounds.
LOOKS = {
    '#ffffff': [PLAIN, SIMPLE, ('gradients off', ['EnableGradients=false']), ('ivory', IVORY), DISABLED],
    '#14181d': [PLAIN, SIMPLE, ('marine', MARINE), ('night', NIGHT), DISABLED],
}
LIGHT, DARK = LOOKS


def title_of(path):
    return os.path.splitext(os.path.basename(path))[0]


class Tool:
    """The command line tool, and the folder that its pictures go to."""

    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def run(self, *arguments):
        return subprocess.run([self.program, *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout

    def picture(self, name, source, *arguments):
        """Draws a picture into the folder and gives its path."""
        png = os.path.join(self.folder, name.replace(' ', '-') + '.png')
        os.makedirs(os.path.dirname(png), exist_ok=True)
        self.run('render', source, *arguments, '-o', png)
        return png

    def properties(self, name):
        """What describes the properties, by their names; a class that is no instrument has none."""
        properties = {row['name']: row for row in json.loads(self.run('describe', name, '--json'))}
        return properties if 'Design' in properties else {}


def sets(properties, edits):
    """Those of the edits that a class understands, as arguments."""
    known = [edit for edit in edits if edit.split('=')[0] in (*properties, 'Enabled')]
    return [word for edit in known for word in ('--set', edit)]


def place_of(properties):
    """The edit that brings the main value to where one sees what it is; none where there is no place for it."""
    for name, row in properties.items():
        quantity = row.get('main')
        if quantity in PLACES:
            return [f'{name}={PLACES[quantity]}']
        if quantity in SHARES and 'Max' in properties:
            low, high = (float(properties[end]['value']) for end in ('Min', 'Max'))
            return [f'{name}={low + SHARES[quantity] * (high - low):g}']
    return []


class Sheet:
    """A sheet of pictures and texts, as SVG."""

    def __init__(self, width):
        self.width, self.body = width, ''

    def box(self, x, y, width, height, fill):
        self.body += f'<rect x="{x}" y="{y}" width="{width}" height="{height}" fill="{fill}"/>\n'

    def text(self, text, x, y, kind='caption', fill=FAINT):
        self.body += f'<text class="{kind}" x="{x:g}" y="{y:g}" fill="{fill}">{html.escape(text)}</text>\n'

    def image(self, png, x, y, tile):
        """A picture in the middle of a square."""
        with open(png, 'rb') as file:
            data = file.read()
        width, height = int.from_bytes(data[16:20], 'big'), int.from_bytes(data[20:24], 'big')
        self.body += (f'<image x="{x + (tile - width) // 2}" y="{y + (tile - height) // 2}" width="{width}" '
                      f'height="{height}" href="data:image/png;base64,{base64.b64encode(data).decode()}"/>\n')

    def path(self, data, x, y, size, fill):
        self.body += f'<path transform="translate({x:g} {y:g}) scale({size / 100:g})" fill="{fill}" d="{data}"/>\n'

    def write(self, tool, name, height):
        """Writes name.svg and name.png; gives the path of the latter."""
        path = os.path.join(tool.folder, name)
        with open(path + '.svg', 'w', encoding='utf-8') as file:
            file.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{self.width}" height="{height}">\n'
                       '<style>text { font: 12px "DejaVu Sans", sans-serif } .caption { text-anchor: middle }\n'
                       '.heading { font-size: 20px; font-weight: bold }</style>\n'
                       f'<rect width="100%" height="100%" fill="#e7ebf1"/>\n{self.body}</svg>\n')
        tool.run('render', path + '.svg', '-o', path + '.png')
        return path + '.png'


def instruments_sheet(tool, tile):
    """Every instrument, a row each: looks on light, then on dark."""
    names = [(name, tool.properties(name)) for name in tool.run('classes').split()]
    names = [(name, properties) for name, properties in names if properties]
    step, panel = tile + GAP, len(LOOKS[LIGHT]) * (tile + GAP) + GAP
    sheet = Sheet(2 * panel + 2 * GAP)
    height = HEADING + len(names) * (tile + CAPTION)
    for side, (background, looks) in enumerate(LOOKS.items()):
        left = GAP + side * panel
        sheet.box(left, HEADING - GAP, panel, height - HEADING + GAP, background)
        for column, (look, edits) in enumerate(looks):
            x = left + GAP + column * step
            sheet.text(look, x + tile / 2, HEADING - GAP - 8)
            for row, (name, properties) in enumerate(names):
                arguments = sets(properties, [*place_of(properties), *edits])
                png = tool.picture(f'{name}/{look}', name, '--size', f'{tile}x{tile}', *arguments)
                sheet.image(png, x, HEADING + row * (tile + CAPTION), tile)
    for row, (name, _) in enumerate(names):
        sheet.text(name, GAP + panel / 2, HEADING + (row + 1) * (tile + CAPTION) - 6, fill='#7a8494')
    return sheet.write(tool, 'instruments', height + GAP)


def emblems(tool):
    """Caption and path of every emblem: the catalogue's, then the round gauge's own ones."""
    found = []
    for source, kinds in (('TVZSpeedometer', DECORATIONS), ('TVZCircularClock', ('Star', 'Modern', 'Globe'))):
        for kind in kinds:
            line = tool.run('get', source, '--set', f'Decoration=dc{kind}', 'DecorationPath')
            round_one = ' (round)' if source == 'TVZCircularClock' else ''
            found.append((kind + round_one, line.split('=', 1)[1].strip()))
    return found


def emblems_sheet(tool, columns=7, tile=120):
    """Every emblem at 72 pixels on light, and at 24 on light and dark."""
    found = emblems(tool)
    rows = -(-len(found) // columns)
    sheet = Sheet(columns * (tile + GAP) + GAP)
    for index, (caption, path) in enumerate(found):
        x, y = GAP + index % columns * (tile + GAP), GAP + index // columns * (tile + CAPTION + GAP)
        sheet.box(x, y, tile, tile, LIGHT)
        sheet.box(x + tile - 36, y, 36, tile, DARK)
        big, small = (50, 18) if 'round' in caption else (64, 24)  # the round gauge's reach beyond their box
        sheet.path(path, x + (tile - 36 - big) / 2, y + (tile - big) / 2, big, INK)
        for place, color in ((0.25, '#ffffff'), (0.75, '#ffb454')):
            sheet.path(path, x + tile - 18 - small / 2, y + tile * place - small / 2, small, color)
        sheet.text(caption, x + tile / 2, y + tile + 16)
    return sheet.write(tool, 'emblems', GAP + rows * (tile + CAPTION + GAP))


def control_sheet(tool, tile, columns=8):
    """What the plain control shows and can do."""
    wide = ['--size', f'{tile}x{tile * 2 // 3}']
    square = ['--size', f'{tile}x{tile}']
    sections = [
        ('Sample files', [(title_of(path), path, square) for path in sorted(glob.glob('examples/svg/*.svg'))]),
        ('The control', [
            ('keeps its aspect ratio', DIAL, wide),
            ('Stretch', DIAL, [*wide, '--set', 'Stretch=true']),
            ('Opacity', DIAL, [*square, '--set', 'Opacity=0.35']),
            ('disabled', DIAL, [*square, '--set', 'Enabled=false']),
            ('Transform', DIAL, [*square, '--set', f'Transform=matrix(0.82 0.26 -0.3 0.7 {tile / 4} {tile / 12})']),
            ('48 pixels', DIAL, ['--size', '48x48']),
        ]),
    ]
    sheet, y = Sheet(GAP + columns * (tile + GAP)), GAP // 2
    for heading, tiles in sections:
        sheet.text(heading, GAP, y + 30, 'heading', INK)
        y += HEADING
        for index, (caption, source, arguments) in enumerate(tiles):
            if index and index % columns == 0:
                y += tile + CAPTION + GAP
            x = GAP + index % columns * (tile + GAP)
            sheet.image(tool.picture(f'{heading.lower()}/{caption}', source, *arguments), x, y, tile)
            sheet.text(caption, x + tile / 2, y + tile + 16)
        y += tile + CAPTION + GAP
    return sheet.write(tool, 'control', y)


PAGE = '''# Gallery

All pictures are drawn by `tavro` and its gallery; `scripts/gallery --docs` makes this page anew.

## The window

`scripts/gallery` opens it: every instrument in motion, an inspector that edits each property and says what differs from
the default, switches for all instruments at once. Forms are opened, also by dropping a file on the window, and saved; an
instrument is copied as C++ or as a form, or exported as PNG, SVG or PDF. All of it has keys; the menus show them.

![The gallery: every instrument in motion, with an inspector of its properties](gallery-window.png)

## Instruments

Each in its default look, in the simple design, without gradients, in three sets of colours, and disabled; on light and on
dark.

![Every instrument in its looks, on light and on dark](instruments.png)

## Emblems

The catalogue of `Decoration`, then the three that round instruments draw in their own way.

![Every emblem at two sizes](emblems.png)

## The control

`TVZSVGControl` shows any SVG file.

![Sample files, and what the control does with one](control.png)
'''


def main():
    parser = argparse.ArgumentParser(description='Draw the contact sheets.')
    parser.add_argument('tool')
    parser.add_argument('folder')
    parser.add_argument('--docs')
    parser.add_argument('--tile', type=int, default=112)
    options = parser.parse_args()
    os.makedirs(options.folder, exist_ok=True)
    tool = Tool(options.tool, options.folder)
    sheets = [instruments_sheet(tool, options.tile), emblems_sheet(tool), control_sheet(tool, options.tile)]
    if not options.docs:
        return
    for sheet in sheets:
        shutil.copy(sheet, options.docs)
    with open(os.path.join(options.docs, 'gallery.md'), 'w', encoding='utf-8') as file:
        file.write(PAGE)


if __name__ == '__main__':
    main()
