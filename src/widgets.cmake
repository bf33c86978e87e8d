# The windows: Options and the two browsers, the platform services they use, and the `quillary` program.
if(UNIX AND NOT APPLE)
    find_package(Qt6 6.4 REQUIRED COMPONENTS DBus)
endif()

add_library(quillary_widgets STATIC
    platform/AdminCheck.h
    platform/AppProgramEnd.cpp platform/AppProgramEnd.h
    platform/CopyProgressService.h
    platform/DesktopShellService.cpp platform/DesktopShellService.h
    platform/InputService.h
    platform/MediaPlayer.h
    platform/MessageService.h
    platform/ProgramEnd.h
    platform/QtCopyProgressService.cpp platform/QtCopyProgressService.h
    platform/QtInputService.cpp platform/QtInputService.h
    platform/QtMediaPlayer.cpp platform/QtMediaPlayer.h
    platform/QtMessageService.cpp platform/QtMessageService.h
    platform/Services.h
    platform/ShellService.h
    platform/SystemAdminCheck.cpp platform/SystemAdminCheck.h
    platform/SystemServices.cpp platform/SystemServices.h
    platform/Twips.cpp platform/Twips.h
    browser/BrowserControls.h
    browser/BrowserFlavour.cpp browser/BrowserFlavour.h
    browser/BrowserWindow.cpp browser/BrowserWindow.h
    browser/ClassicLook.cpp browser/ClassicLook.h
    browser/ClickableFrame.cpp browser/ClickableFrame.h
    browser/ClickableLabel.cpp browser/ClickableLabel.h
    browser/ListingDriver.cpp browser/ListingDriver.h
    browser/Pictures.cpp browser/Pictures.h
    browser/ResultGrid.cpp browser/ResultGrid.h
    browser/ResultGridModel.cpp browser/ResultGridModel.h
    browser/ResultList.cpp browser/ResultList.h
    browser/ResultListModel.cpp browser/ResultListModel.h
    browser/ResultPanes.cpp browser/ResultPanes.h
    browser/SaveActions.cpp browser/SaveActions.h
    actions/GoToCell.cpp actions/GoToCell.h
    actions/ItemActions.cpp actions/ItemActions.h
    actions/UnhandledError.h
    search/SearchResultModel.cpp search/SearchResultModel.h
    search/SearchSection.cpp search/SearchSection.h
    actions/ContextMenus.cpp actions/ContextMenus.h
    actions/CopyActions.cpp actions/CopyActions.h
    startup/OptionsControls.h
    startup/OptionsWindow.cpp startup/OptionsWindow.h
)
set_target_properties(quillary_widgets PROPERTIES AUTOMOC ON)
target_link_libraries(quillary_widgets PUBLIC quillary_core Qt6::Widgets)
find_package(Qt6 6.4 REQUIRED COMPONENTS Multimedia MultimediaWidgets)
target_link_libraries(quillary_widgets PRIVATE Qt6::Multimedia Qt6::MultimediaWidgets)
if(TARGET Qt6::DBus)
    target_link_libraries(quillary_widgets PRIVATE Qt6::DBus)
    target_compile_definitions(quillary_widgets PRIVATE QUILLARY_HAVE_DBUS)
endif()

add_executable(quillary WIN32 app/main.cpp)
if(UNIX)
    target_sources(quillary PRIVATE app/AutomationProbe.cpp app/AutomationProbe.h)
endif()
if(WIN32)
    target_sources(quillary PRIVATE app/quillary.manifest) # UTF-8 as the active code page
endif()
target_link_libraries(quillary PRIVATE quillary_widgets)
install(TARGETS quillary RUNTIME DESTINATION bin)
