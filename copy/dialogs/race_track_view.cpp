#include "copy/dialogs/race_track_view.h"

#include "base/answering_wait.h"
#include "ui/back_buffer.h"
#include "ui/colour_scheme.h"
#include "ui/pictures.h"

#include <objidl.h>

#include <gdiplus.h>

namespace torvane {

namespace {

void drawTrack(const RaceTrack& track, const BackBuffer& buffer, Scale scale) {
    Gdiplus::Graphics graphics(buffer.context());
    Pictures pictures(scale);
    for (const std::string_view name : track.pictures) {
        pictures.load(name);
    }
    pictures.draw(graphics, track.ground.picture, track.ground.x, track.ground.y);
    for (std::size_t i = 0; i < track.figures.size(); ++i) {
        if (i > 0) {
            graphics.Flush(Gdiplus::FlushIntentionSync);
            buffer.show();
            pauseAnswering(kExplosionFrameMilliseconds); // jobs go on telling how they stand
        }
        const Sprite& figure = track.figures[i];
        pictures.draw(graphics, figure.picture, figure.x, figure.y);
    }
}

} // namespace

void paintRaceTrack(HDC paintContext, TrackScene scene, const RaceTrackState& state, Scale scale) {
    const BackBuffer buffer(paintContext);
    if (!buffer.isUsable()) {
        return;
    }
    buffer.fill(dialogGround());
    drawTrack(layOutRaceTrack(scene, state), buffer, scale);
    buffer.show();
}

} // namespace torvane
