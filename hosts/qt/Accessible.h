#pragma once

/// Makes assistive technology see every VzWidget as what it is: a dial with a formatted value and a range, a
/// clock, or a picture. Nothing happens the second time.
void installAccessibleFactory();
