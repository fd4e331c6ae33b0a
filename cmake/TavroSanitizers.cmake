# What tests need where the build has sanitizers.

if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(TAVRO_SANITIZED ON)
else()
    set(TAVRO_SANITIZED OFF)
endif()

# tavro_sanitized_tests(): prepares the tests that the calling folder adds, before and after the call.
function(tavro_sanitized_tests)
    if(TAVRO_SANITIZED)
        cmake_language(DEFER CALL tavro_prepare_sanitized_tests)
    endif()
endfunction()

# Gives each test of the folder the sanitizers' options and ten times the time. Leaks are told apart by their whole
# stacks, which the fast unwinder loses in libraries.
function(tavro_prepare_sanitized_tests)
    get_property(tests DIRECTORY PROPERTY TESTS)
    foreach(test IN LISTS tests)
        get_property(seconds TEST ${test} PROPERTY TIMEOUT)
        if(seconds)
            math(EXPR seconds "${seconds} * 10")
            set_property(TEST ${test} PROPERTY TIMEOUT ${seconds})
        endif()
        set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT TAVRO_SANITIZED=1 ASAN_OPTIONS=fast_unwind_on_malloc=0
            UBSAN_OPTIONS=print_stacktrace=1
            TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/races.supp
            LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0)
    endforeach()
endfunction()
