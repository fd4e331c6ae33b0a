#pragma once

/// Shows `count` speedometers of 200 x 200, all moving, for five seconds and prints frames a second and where
/// the time goes. The exit status of the program.
int runStress(int count);
