# Strict warnings for the project's own targets (not for third-party headers,
# which come in as system includes).
function(fieldbridge_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                             -Wold-style-cast -Woverloaded-virtual)
    if(FIELDBRIDGE_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                 QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
endfunction()
