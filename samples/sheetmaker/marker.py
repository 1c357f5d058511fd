"""A small icon with a transparent ground: a map pin."""

from PIL import Image, ImageDraw

_SIZE, _DENSITY = 32, 8


def draw():
    """Return the icon, 32 × 32 pixels with opacity."""
    side = _SIZE * _DENSITY
    image = Image.new("RGBA", (side, side), (200, 40, 30, 0))
    pen = ImageDraw.Draw(image)
    for grow, colour in ((0, (110, 10, 10, 255)), (9, (222, 62, 48, 255))):
        pen.ellipse((56 + grow, 12 + grow, 200 - grow, 156 - grow), colour)
        pen.polygon([(66 + grow, 112), (190 - grow, 112), (128, 248 - 2.4 * grow)], colour)
    pen.ellipse((98, 54, 158, 114), (255, 255, 255, 255))
    return image.reduce(_DENSITY)


def flat(image):
    """Return the icon for a format without opacity: magenta where nothing is drawn."""
    ground = Image.new("RGBA", image.size, (255, 0, 255, 255))
    solid = image.getchannel("A").point(lambda level: 255 if level >= 128 else 0)
    ground.paste(image, (0, 0), solid)
    return ground.convert("RGB")
