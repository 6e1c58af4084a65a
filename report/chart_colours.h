// The colours of a chart, for drawings on light and on dark ground.
#pragma once

#include <string_view>

namespace chanplan {

/// As "#rrggbb".
struct ChartColours {
  std::string_view Text;
  std::string_view SmallText;
  std::string_view Page;
  std::string_view OddLane;
  std::string_view Grid;
  std::string_view Uplink;
  std::string_view UplinkEdge;
  std::string_view Downlink;
  std::string_view DownlinkGround;  ///< between the lines in the colour of downlinks
  std::string_view Own;
  std::string_view Shared;
};

inline constexpr ChartColours LightColours = {"#1c2024", "#59626b", "#ffffff", "#f2f5f8", "#d5dae0", "#1f6fb5",
                                              "#17568d", "#a14f00", "#fbe3c8", "#7d8893", "#c2005d"};
inline constexpr ChartColours DarkColours = {"#e8eaed", "#a6aeb7", "#16191d", "#1e2328", "#343b43", "#63a9e8",
                                             "#8cc2f2", "#f0a04b", "#46301a", "#87919b", "#ff6fb0"};

}  // namespace chanplan
