#pragma once

// Opens the control that shows any SVG file, TVZSVGControl, with the live document that it owns.

#include "tavro/graphics/Transform.h"
#include "tavro/svg/Control.h"
#include "tavro/svg/model/Document.h"
#include "tavro/svg/model/Font.h"
#include "tavro/svg/model/Gradients.h"
#include "tavro/svg/model/Shapes.h"
#include "tavro/svg/model/TextElements.h"
