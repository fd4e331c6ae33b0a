#!/usr/bin/env python3
"""Holds what `tavro document` writes against another viewer: rsvg-convert draws the written document, `tavro render`
the component itself, and of their pixels at most 1 % may differ visibly.

  viewer.py --tool PROGRAM --output DIR [--class TEXT]

Leaves the pictures that differ too much, and their difference, in DIR. Ends with status 77 (skipped) where
rsvg-convert, numpy, Pillow or the fonts of the artworks are not there.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree

SIZE = 400  # pixels of the longer side
VISIBLE = 32  # of 255, of a premultiplied channel
MOST_PERCENT = 1.0  # the thin ribs of the traffic light's hoods are smoothed in another way by other viewers
SKIPPED = 77
FONTS = '/usr/share/fonts/truetype/dejavu'

# Both draw with the same fonts, unhinted; a real bold one among them, because viewers make one up in different ways.
FONT_CONFIGURATION = f'''<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>{FONTS}</dir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <match target="font">
    <edit name="hinting" mode="assign"><bool>false</bool></edit>
    <edit name="hintstyle" mode="assign"><const>hintnone</const></edit>
    <edit name="autohint" mode="assign"><bool>false</bool></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
  </match>
</fontconfig>
'''

# Sets of edits. Of each, the properties that a class does not publish are left out.
LOOKS = {
    'default': [],
    'moved': ['Value=61', 'Time=2026-03-15T10:08:36', 'Angle=210'],
    'simple': ['Design=sdSimple', 'Value=61', 'Time=2026-03-15T10:08:36'],
    'gradients-off': ['EnableGradients=false'],
    'simple-gradients-off': ['Design=sdSimple', 'EnableGradients=false'],
    'recoloured': ['FrameColor=0xFF274C77', 'BackfaceColor=0xFFF7F4EA', 'LabelsFillColor=0xFF22262B',
                   'LabelsStrokeColor=0x00000000', 'MarkersFillColor=0xFF8A1C1C', 'MajorMarkersColor=0xFF22262B',
                   'MinorMarkersColor=0xFF8A1C1C', 'NeedleFillColor=0xFF22262B', 'BigHandColor=0xFF22262B',
                   'LittleHandColor=0xFF22262B', 'KnobColor=0xFFD4AF37', 'KnobFillColor=0xFFD4AF37',
                   'BoltColor=0xFFD4AF37', 'LightColor=0xFFFFC080'],
    'flat-colours': ['EnableGradients=false', 'FrameColor=0xFF006A4E', 'BackfaceColor=0x80102A43',
                     'DecorationFillColor=0x00000000', 'DecorationStrokeColor=0xFFFFFFFF', 'Decoration=dcAnchor'],
    'emblem': ['Decoration=dcGlobe', 'DecorationFillColor=0xFF00AA88', 'DecorationStrokeColor=0xFFFFFFFF'],
    'own-path': ['DecorationPath=M10 10H90V90H10Z M30 30H70V70H30Z', 'LightColor=0xFF80FF80'],
    'scale': ['Min=-40', 'Max=60', 'Value=12.25', 'StartAngle=300', 'StopAngle=60', 'MajorMarkers=7',
              'MinorMarkers=1', 'MajorMarker=gmOutArrow', 'MinorMarker=gmCircle', 'FormatStr=0.0#'],
    'texts': ['Caption=\u00d6l <&> "it\'s"', 'DetailText=\u0416\u03a9', 'Font.Size=7.5', 'Font.Family=DejaVu Serif',
              'CaptionFont.Size=14', 'Labels=\\n<b>\\n\u20ac&'],
    'no-glass': ['Parts=[gpFrame, gpHands, gpMajorMarkers, gpLabels, gpMeasurementLabels, gpKnob]',
                 'Parts=[spBackface, spNeedle, spLabels, spMinorMarkers]', 'Hands=[ghThin]'],
}

# Documents that are not square, beside the instruments: width, height, and the attributes of their root.
SHAPES = {
    'high': (75, 200, ''),
    'wide': (200, 75, ''),
    'high-view': (75, 200, 'viewBox="0 0 150 400"'),
    'odd': (123, 77, 'viewBox="0 0 246 154"'),
}
SHAPE = '''<svg xmlns="http://www.w3.org/2000/svg" width="{0}" height="{1}" {2}>
<rect width="75" height="40" fill="#274c77"/><circle cx="40" cy="60" r="15" fill="#8a1c1c" stroke="#fff" stroke-width="3"/>
<path d="M5 5L70 70H5Z" fill="#d4af37" fill-opacity="0.6"/></svg>'''


def skip(why):
    print(f'SKIPPED: {why}')
    sys.exit(SKIPPED)


def run(command, environment):
    done = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          check=False)
    if done.returncode != 0:
        sys.exit(f'{" ".join(command)} ended with status {done.returncode}: {done.stderr.strip()}')
    return done.stdout


def properties_of(tool, name, environment):
    """The declared defaults by the properties' names."""
    fields = [line.split('\t') for line in run([tool, 'describe', name], environment).splitlines()]
    return {field[0]: field[2] for field in fields}


def edits_for(look, properties):
    """The edits that a class understands, as arguments."""
    edits = []
    for edit in LOOKS[look]:
        name, value = edit.split('=', 1)
        is_of_another = name == 'Parts' and value.strip('[]').split(',')[0] not in properties.get(name, '')
        if name in properties and not is_of_another:
            edits += ['--set', edit]
    return edits


def pixels(path):
    import numpy
    from PIL import Image
    picture = numpy.asarray(Image.open(path).convert('RGBA')).astype(float)
    picture[..., :3] *= picture[..., 3:] / 255
    return picture


def picture_size(svg):
    """Width and height in pixels of a picture with the document's aspect ratio, by whole factors where they fit."""
    root = xml.etree.ElementTree.parse(svg).getroot()
    width, height = (float(re.match(r'[0-9.]+', root.get(name))[0]) for name in ('width', 'height'))
    factor = SIZE / max(width, height)
    return round(width * int(factor) or width * factor), round(height * int(factor) or height * factor)


def compare(options, case, arguments, environment):
    """How many per cent of the pixels differ visibly."""
    import numpy
    from PIL import Image
    path = os.path.join(options.output, case)
    run([options.tool, 'document', *arguments, '-o', path + '.svg'], environment)
    width, height = picture_size(path + '.svg')
    run(['rsvg-convert', '-w', str(width), '-h', str(height), path + '.svg', '-o', path + '-viewer.png'], environment)
    run([options.tool, 'render', *arguments, '--size', f'{width}x{height}', '-o', path + '-own.png'], environment)
    difference = numpy.abs(pixels(path + '-viewer.png') - pixels(path + '-own.png')).max(axis=2)
    percent = 100 * float((difference > VISIBLE).mean())
    if percent > MOST_PERCENT:
        Image.fromarray((255 - numpy.minimum(255, 4 * difference)).astype('uint8')).save(path + '-difference.png')
    else:
        for ending in ('.svg', '-viewer.png', '-own.png'):
            os.remove(path + ending)
    return percent


def main():
    parser = argparse.ArgumentParser(description='Compare written documents with another viewer.')
    parser.add_argument('--tool', required=True)
    parser.add_argument('--output', required=True)
    parser.add_argument('--class', dest='name', default='', help='only classes whose name contains this')
    options = parser.parse_args()
    if not shutil.which('rsvg-convert'):
        skip('there is no rsvg-convert (librsvg2-bin)')
    if not os.path.exists(os.path.join(FONTS, 'DejaVuSans-Bold.ttf')):
        skip('the fonts of the artworks are not there (fonts-dejavu-core)')
    try:
        import numpy  # noqa: F401
        import PIL  # noqa: F401
    except ImportError:
        skip('numpy and Pillow compare the pictures (python3-numpy, python3-pil)')
    shutil.rmtree(options.output, ignore_errors=True)
    os.makedirs(options.output)
    fonts = os.path.join(options.output, 'fonts.conf')
    with open(fonts, 'w', encoding='utf-8') as file:
        file.write(FONT_CONFIGURATION)
    environment = dict(os.environ, FONTCONFIG_FILE=fonts, LC_ALL='C.UTF-8', TZ='UTC')
    pictures = []
    for name, shape in SHAPES.items():
        if options.name not in name:
            continue
        path = os.path.join(options.output, f'shape-{name}.svg')
        with open(path, 'w', encoding='utf-8') as file:
            file.write(SHAPE.format(*shape))
        pictures.append((name, 'shape', [path]))
    for name in run([options.tool, 'classes'], environment).split():
        properties = properties_of(options.tool, name, environment)
        if options.name not in name or 'Design' not in properties:  # no instrument
            continue
        pictures += [(name, look, [name, *edits_for(look, properties)]) for look in LOOKS]
    worst, failures, count = 0.0, 0, len(pictures)
    for name, look, arguments in pictures:
        percent = compare(options, f'{name}-{look}', arguments, environment)
        worst = max(worst, percent)
        if percent > MOST_PERCENT:
            failures += 1
            print(f'FAILED {name}, {look}: {percent:.2f} % of the pixels differ')
    print(f'{count} pictures, {failures} failed; worst: {worst:.3f} % of the pixels')
    sys.exit(1 if failures or not count else 0)


if __name__ == '__main__':
    main()
