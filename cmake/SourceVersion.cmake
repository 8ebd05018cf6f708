# source_version(FOLDER RELEASE) sets in the scope of the caller:
#   SOURCE_VERSION    the release and the commit of the checkout, such as 0.1.0+git20261122103217.412.c1b6387. The
#                     commit's time in UTC comes first, and then the number of commits up to it, so that a package of a
#                     later commit upgrades an earlier one, also one of the same second. Changes that are not committed
#                     add the time of the build. Without a checkout it is the release and "+0".
#   SOURCE_TIMESTAMP  the time of the commit, or else of the build, as a Debian changelog has it
function(source_version folder release)
    # In a container the checkout often belongs to another user.
    set(git git -c safe.directory=* -C ${folder})
    execute_process(COMMAND ${CMAKE_COMMAND} -E env TZ=UTC
        ${git} log -1 --date=format-local:%Y%m%d%H%M%S "--format=%cd;%h;%cD"
        RESULT_VARIABLE result OUTPUT_VARIABLE commit ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(result EQUAL 0)
        list(GET commit 0 version)
        list(GET commit 1 hash)
        list(GET commit 2 timestamp)
        execute_process(COMMAND ${git} rev-list --count HEAD OUTPUT_VARIABLE count OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(version ${release}+git${version}.${count}.${hash})
        execute_process(COMMAND ${git} status --porcelain --untracked-files=no
            OUTPUT_VARIABLE changes ERROR_QUIET)
        if(changes)
            string(TIMESTAMP now %Y%m%d%H%M%S UTC)
            string(APPEND version .changed${now})
        endif()
    else()
        set(version ${release}+0)
        string(TIMESTAMP timestamp "%a, %d %b %Y %H:%M:%S +0000" UTC)
    endif()
    set(SOURCE_VERSION ${version} PARENT_SCOPE)
    set(SOURCE_TIMESTAMP ${timestamp} PARENT_SCOPE)
endfunction()
