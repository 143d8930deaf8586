# Programs with windows have a main of their own, and the resources of this build.
function(velmora_add_gui_tests name)
    add_executable(${name} ${ARGN} support/GuiTestMain.cpp)
    target_link_libraries(${name} PRIVATE velmora_screen_objects velmora_test_support Qt6::Widgets)
    target_precompile_headers(${name} REUSE_FROM velmora_test_support)
    add_dependencies(${name} velmora_resources)
    gtest_discover_tests(${name} TEST_PREFIX "${name}." NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES
        TIMEOUT 120 ENVIRONMENT "VELMORA_RESOURCES=${VELMORA_RESOURCES}")
endfunction()

velmora_add_gui_tests(ui
    ui/ActivityIndicatorViewTest.cpp
    ui/ImageButtonTest.cpp
    ui/LabelTest.cpp
    ui/PlayerViewControllerTest.cpp
    ui/SimpleProgressViewTest.cpp
    ui/TextAttributesTest.cpp
    ui/WebViewControllerTest.cpp
    support/ScriptedPage.cpp
    support/ScriptedPlayer.cpp)
add_executable(fontreport ui/fontreport.cpp)
target_link_libraries(ui PRIVATE Qt6::Test)
add_test(NAME ui.OnADenserScreen COMMAND ui --gtest_filter=ImageButtonTest.*)
set_tests_properties(ui.OnADenserScreen PROPERTIES ENVIRONMENT QT_SCALE_FACTOR=2)
target_link_libraries(fontreport PRIVATE velmora_screen_objects velmora_objects velmora_compiler Qt6::Widgets)
add_dependencies(ui fontreport)
target_compile_definitions(ui PRIVATE VELMORA_FONT_REPORT="$<TARGET_FILE:fontreport>")

velmora_add_gui_tests(screen
    screen/ApplicationTest.cpp
    screen/ViewControllerTest.cpp
    screen/PresentationTest.cpp)
add_test(NAME screen.OnAPhone
    COMMAND screen --gtest_filter=Application.TheInterface*:Screens.APresented*:Screens.ViewsFollow*)
set_tests_properties(screen.OnAPhone PROPERTIES ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen:configfile=${CMAKE_CURRENT_SOURCE_DIR}/screen/phone.json")

velmora_add_gui_tests(video
    screen/PlayerTest.cpp
    screen/QtPlayerTest.cpp
    ui/VideoShowTest.cpp
    support/ScriptedPlayer.cpp)
target_link_libraries(video PRIVATE velmora_sandbox Qt6::Multimedia)

velmora_add_gui_tests(show
    ui/AdShowControllerTest.cpp
    ui/AdShowEndsTest.cpp
    ui/AdShowProgressTest.cpp
    support/ScriptedPage.cpp
    support/ScriptedPlayer.cpp)
target_link_libraries(show PRIVATE velmora_sandbox)

# With services of the desktop on a system bus of their own.
velmora_add_gui_tests(device
    device/LocationTest.cpp
    device/TelephonyTest.cpp
    device/UserInfoTest.cpp)
target_link_libraries(device PRIVATE velmora_sandbox)
add_dependencies(device velmora-facts)
target_compile_definitions(device PRIVATE
    VELMORA_FACTS="$<TARGET_FILE:velmora-facts>"
    VELMORA_SYSTEM_SERVICES="${PROJECT_SOURCE_DIR}/sandbox/services/system-services")
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/device.velmora.json
    "{\"identifier\": \"com.example.device\", \"version\": \"1.4\"}\n")
add_test(NAME device.OnAPhone COMMAND device --gtest_filter=UserInfo.WithoutAnyService*)
set_tests_properties(device.OnAPhone PROPERTIES ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen:configfile=${CMAKE_CURRENT_SOURCE_DIR}/device/phone.json")
