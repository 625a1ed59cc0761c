# What the documents show is run, and compared with what they say comes out.

# rv_gather_blocks(RESULT TEXT LANGUAGE): the contents of the blocks of a language, one after the other.
function(rv_gather_blocks result text language)
    set(blocks "")
    string(LENGTH "```${language}\n" opening)
    while(TRUE)
        string(FIND "${text}" "```${language}\n" begin)
        if(begin EQUAL -1)
            break()
        endif()
        math(EXPR begin "${begin} + ${opening}")
        string(SUBSTRING "${text}" ${begin} -1 text)
        string(FIND "${text}" "```" end)
        string(SUBSTRING "${text}" 0 ${end} block)
        string(APPEND blocks "${block}")
        math(EXPR end "${end} + 3")
        string(SUBSTRING "${text}" ${end} -1 text)
    endwhile()
    set(${result} "${blocks}" PARENT_SCOPE)
endfunction()

# rv_add_documentation_test(NAME DOCUMENT): builds and runs the C++ of a document, and its commands.
#
# The pieces in blocks ```cpp are put together in their order. They are a whole program, or else the body of a
# main in which assertions hold. What it prints are the blocks ```output. For commands see check_console.
function(rv_add_documentation_test name document)
    file(READ ${document} text)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
    rv_gather_blocks(program "${text}" cpp)
    rv_gather_blocks(output "${text}" output)
    if(program)
        if(NOT program MATCHES "int main")
            set(program "#undef NDEBUG\n#include <cassert>\n\n#include \"rv/analysis.h\"\n\nint main() {\n${program}}\n")
        endif()
        file(CONFIGURE OUTPUT ${name}.cpp CONTENT "${program}" @ONLY)
        add_executable(${name} ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
        rv_target_options(${name})
        target_link_libraries(${name} PRIVATE rv::rv)
        string(REPLACE "\n" " " output "${output}")
        string(STRIP "${output}" output)
        rv_add_example_test(output ${name} OUTPUT "${output}")
    endif()
    if(text MATCHES "```console\n")
        add_test(NAME ${name}.console
                 COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check_console ${document}
                         $<TARGET_FILE_DIR:package_order> ${PROJECT_SOURCE_DIR})
    endif()
endfunction()
