# For CMAKE_PROJECT_TOP_LEVEL_INCLUDES: a machine that has Boost and no other library to build with. Whatever else is
# looked for ends the configuration, whether or not it was required.
macro(refuse_packages method name)
  if(NOT "${name}" MATCHES "^([Bb]oost.*|Threads)$")
    message(FATAL_ERROR "${name} is looked for")
  endif()
endmacro()
cmake_language(SET_DEPENDENCY_PROVIDER refuse_packages SUPPORTED_METHODS FIND_PACKAGE)
