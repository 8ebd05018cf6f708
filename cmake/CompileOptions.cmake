# The compiler options of the project's own code.
add_library(coreui_options INTERFACE)
target_compile_definitions(coreui_options INTERFACE
    QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_STRICT_ITERATORS
    QT_DISABLE_DEPRECATED_BEFORE=0x050f00 QT_DEPRECATED_WARNINGS_SINCE=0x060400)
target_compile_options(coreui_options INTERFACE -Wall -Wextra -Wshadow -Wconversion)
if(COREUI_WARNINGS_AS_ERRORS)
    target_compile_options(coreui_options INTERFACE -Werror)
endif()
if(COREUI_SANITIZE)
    target_compile_options(coreui_options INTERFACE
        -fsanitize=${COREUI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(coreui_options INTERFACE -fsanitize=${COREUI_SANITIZE})
endif()
