# A newer compiler that warns of more must not keep a user from building: only those who work on
# the code are stopped by a warning.
option(QUILLON_WERROR "Take warnings for errors" OFF)

# What every layer of ours is compiled with. An interface target, so that nothing leaks into
# code that is not ours.
add_library(quillon-strict INTERFACE)
target_include_directories(quillon-strict INTERFACE ${PROJECT_SOURCE_DIR})

target_compile_options(quillon-strict INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wold-style-cast -Woverloaded-virtual
  -Wnon-virtual-dtor -Wcast-align -Wcast-qual -Wformat=2 -Wundef -Wextra-semi
  $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override -Wduplicated-cond -Wduplicated-branches -Wlogical-op>
  $<$<BOOL:${QUILLON_WERROR}>:-Werror>)

target_compile_definitions(quillon-strict INTERFACE
  QUILLON_VERSION="${PROJECT_VERSION}"
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
  QT_NO_FOREACH QT_NO_KEYWORDS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_STRICT_ITERATORS
  QT_DEPRECATED_WARNINGS
  $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

# One target per folder: quillon_layer(NAME SOURCES... LINKS targets...).
function(quillon_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${LAYER_SOURCES})
  target_link_libraries(${name} PUBLIC ${LAYER_LINKS} PRIVATE quillon-strict)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()
