# The programs. Installed, this is the CMakeLists.txt beside them:
#     cmake -S . -B /tmp/examples && cmake --build /tmp/examples
cmake_minimum_required(VERSION 3.25)
if(NOT TARGET rv::rv)
    project(rv_examples LANGUAGES CXX)
    find_package(rv REQUIRED)
endif()

add_executable(package_order package_causes.cpp package_cycles.cpp package_graph.cpp package_order.cpp
               package_source.cpp)
add_executable(route route.cpp route_graph.cpp text_lines.cpp)
add_executable(flow flow.cpp flow_problem.cpp text_lines.cpp)
add_executable(modules module_graph.cpp modules.cpp text_lines.cpp)
set(programs package_order route flow modules)
foreach(program ${programs})
    target_sources(${program} PRIVATE arguments.cpp text_io.cpp)
    target_link_libraries(${program} PRIVATE rv::rv)
endforeach()
