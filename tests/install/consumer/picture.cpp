#include <tavro/Vz.Tavro.Speedometers.h>
#include <tavro/controls/HeadlessHost.h>
#include <tavro/runtime/AtomicFile.h>

int main(int count, char** arguments) {
    const auto speedometer = Vz::TVZSpeedometer::Create();
    speedometer->SetValue(87);
    Vz::WriteFileAtomically(count > 1 ? arguments[1] : "speed.png",
                            Vz::EncodePng(Vz::THeadlessHost(*speedometer).Paint().GetPixels()));
}
