// SPDX-FileCopyrightText: The Quilvane developers
// SPDX-License-Identifier: GPL-3.0-or-later
// Renders a drawing as a square picture:
//   render_icon DRAWING.svg SIDE PICTURE.png

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: render_icon DRAWING.svg SIDE PICTURE.png\n";
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const int side = std::atoi(argv[2]);
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    if (QPainter painter(&picture); painter.isActive())
        drawing.render(&painter);
    if (!drawing.isValid() || !picture.save(QString::fromLocal8Bit(argv[3]), "PNG")) {
        std::cerr << "render_icon: " << argv[1] << " could not be rendered as " << argv[3] << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
