// A picture without a window and without Qt: an altimeter, drawn at twice its size.

#include <tavro/Vz.Tavro.Altimeters.h>
#include <tavro/controls/HeadlessHost.h>
#include <tavro/runtime/AtomicFile.h>

#include <cstdio>

int main(int count, char** arguments) try {
    const auto altimeter = Vz::TVZCircularAltimeter::Create();
    altimeter->SetBounds(0, 0, 300, 300);
    altimeter->SetValue(7350);
    altimeter->SetCaption("Matterhorn");
    altimeter->SetBackfaceColor(0xFF12324A);

    Vz::THeadlessHost host(*altimeter, 2);
    const char* const file = count > 1 ? arguments[1] : "altimeter.png";
    Vz::WriteFileAtomically(file, Vz::EncodePng(host.Paint().GetPixels()));
    std::printf("%s\n", file);
} catch (const std::exception& error) {
    std::fprintf(stderr, "headless: %s\n", error.what());
    return 1;
}
