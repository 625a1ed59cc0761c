# What the documents show is run, and compared with what they say comes out.

# The texts of all blocks of a language in a Markdown text, one after the other.
function(rv_fenced_blocks result language text)
    set(all "")
    while(TRUE)
        string(FIND "${text}" "\n```${language}\n" begin)
        if(begin EQUAL -1)
            break()
        endif()
        string(LENGTH "\n```${language}\n" length)
        math(EXPR begin "${begin} + ${length}")
        string(SUBSTRING "${text}" ${begin} -1 text)
        string(FIND "${text}" "```" end)
        string(SUBSTRING "${text}" 0 ${end} piece)
        string(APPEND all "${piece}\n")
        math(EXPR end "${end} + 3")
        string(SUBSTRING "${text}" ${end} -1 text)
    endwhile()
    set(${result} "${all}" PARENT_SCOPE)
endfunction()

# rv_add_documentation_test(NAME DOCUMENT): builds and runs the C++ of a document, and its commands.
#
# The blocks of cpp are put together in their order. They are a whole program, or else the body of a main in
# which assertions hold. What it prints are the blocks of text. For commands see check_console.
function(rv_add_documentation_test name document)
    file(READ ${document} text)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
    rv_fenced_blocks(program cpp "${text}")
    if(program)
        if(NOT program MATCHES "int main")
            set(program "#undef NDEBUG\n#include <cassert>\n\n#include \"rv/analysis.h\"\n\nint main() {\n${program}}\n")
        endif()
        file(CONFIGURE OUTPUT ${name}.cpp CONTENT "${program}" @ONLY)
        add_executable(${name} ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
        rv_target_options(${name})
        target_link_libraries(${name} PRIVATE rv::rv)
        rv_fenced_blocks(output text "${text}")
        string(REGEX REPLACE "\n+" " " output "${output}")
        string(STRIP "${output}" output)
        rv_add_example_test(output ${name} OUTPUT "${output}")
    endif()
    if(text MATCHES "\n```console\n")
        add_test(NAME ${name}.console
                 COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/check_console ${document}
                         $<TARGET_FILE_DIR:package_order> ${PROJECT_SOURCE_DIR})
    endif()
endfunction()

# rv_add_page_test(PAGE): the same for a page about an algorithm.
function(rv_add_page_test page)
    cmake_path(GET page STEM name)
    file(READ ${page} text)
    if(NOT text MATCHES "\n```text\n")
        message(SEND_ERROR "${page} has no block of text with the output")
    endif()
    file(READ ${PROJECT_SOURCE_DIR}/docs/algorithms/README.md text)
    if(NOT text MATCHES "[(]${name}.md\\)")
        message(SEND_ERROR "docs/algorithms/README.md has no row for ${page}")
    endif()
    rv_add_documentation_test(page_${name} ${page})
    target_include_directories(page_${name} PRIVATE ${PROJECT_SOURCE_DIR}/docs/algorithms)
endfunction()
