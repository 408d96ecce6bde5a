; The installer for Windows: makensis -DVERSION=1.0.0 -DSOURCE=folder -DOUTPUT=file -DREMOVAL=file -DICON=file installer.nsi
; SOURCE is the installed tree, and REMOVAL deletes in it, file by file: what the user put beside them stays.
; Silent with /S, elsewhere with /D=folder; in English and Swedish.
Target amd64-unicode  ; as the programs are
Unicode true
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Orvik"
Name "OrvikHost ${VERSION}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES64\Orvik"
RequestExecutionLevel admin
SetCompressor /SOLID lzma
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "OrvikHost"
VIAddVersionKey FileDescription "OrvikHost ${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright ""

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Swedish"

LangString Session ${LANG_ENGLISH} "Data logger session"
LangString Session ${LANG_SWEDISH} "Session från datalogger"
LangString Recording ${LANG_ENGLISH} "Data logger recording"
LangString Recording ${LANG_SWEDISH} "Inspelning från datalogger"
LangString InUse ${LANG_ENGLISH} "OrvikHost runs; close it, and any recorder, and try again."
LangString InUse ${LANG_SWEDISH} "OrvikHost körs; stäng det, och eventuell inspelare, och försök igen."

; Ends the installer, or the uninstaller, while a program of ours runs: its file could not be replaced, and half would be new.
!macro RequireNotRunning File
    ${If} ${FileExists} "${File}"
        ClearErrors
        FileOpen $0 "${File}" a
        ${If} ${Errors}
            MessageBox MB_OK|MB_ICONEXCLAMATION "$(InUse)" /SD IDOK
            SetErrorLevel 2
            Quit
        ${EndIf}
        FileClose $0
    ${EndIf}
!macroend
!macro RequireNoneRunning
    !insertmacro RequireNotRunning "$INSTDIR\orvikhost.exe"
    !insertmacro RequireNotRunning "$INSTDIR\gui\OrvikHost.exe"
!macroend

Function .onInit
    SetRegView 64
    ; Where it is installed already, unless /D says otherwise.
    ReadRegStr $0 HKLM "${UNINSTALL}" "InstallLocation"
    ${If} $0 != ""
    ${AndIf} $INSTDIR == "$PROGRAMFILES64\Orvik"
        StrCpy $INSTDIR $0
    ${EndIf}
FunctionEnd

; A kind of file, offered beside what opens it already.
!macro Kind Ending Class Text
    WriteRegStr HKLM "Software\Classes\${Class}" "" "${Text}"
    WriteRegStr HKLM "Software\Classes\${Class}\DefaultIcon" "" "$INSTDIR\gui\OrvikHost.exe,0"
    WriteRegStr HKLM "Software\Classes\${Class}\shell\open\command" "" '"$INSTDIR\gui\OrvikHost.exe" "%1"'
    WriteRegStr HKLM "Software\Classes\${Ending}\OpenWithProgids" "${Class}" ""
    ReadRegStr $0 HKLM "Software\Classes\${Ending}" ""
    ${If} $0 == ""
        WriteRegStr HKLM "Software\Classes\${Ending}" "" "${Class}"
    ${EndIf}
!macroend
!macro NoKind Ending Class
    DeleteRegKey HKLM "Software\Classes\${Class}"
    DeleteRegValue HKLM "Software\Classes\${Ending}\OpenWithProgids" "${Class}"
    DeleteRegKey /ifempty HKLM "Software\Classes\${Ending}\OpenWithProgids"
    ReadRegStr $0 HKLM "Software\Classes\${Ending}" ""
    ${If} $0 == "${Class}"
        DeleteRegValue HKLM "Software\Classes\${Ending}" ""
    ${EndIf}
    DeleteRegKey /ifempty HKLM "Software\Classes\${Ending}"
!macroend

Section
    SetShellVarContext all
    SetRegView 64
    !insertmacro RequireNoneRunning
    ; What an earlier version had and this one has not.
    ReadRegStr $0 HKLM "${UNINSTALL}" "InstallLocation"
    ${If} $0 != ""
    ${AndIf} ${FileExists} "$0\uninstall.exe"
        ExecWait '"$0\uninstall.exe" /S _?=$0'
    ${EndIf}
    SetOutPath "$INSTDIR"
    File /r "${SOURCE}\*"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateDirectory "$SMPROGRAMS\Orvik"
    SetOutPath "$INSTDIR\gui"
    CreateShortcut "$SMPROGRAMS\Orvik\OrvikHost.lnk" "$INSTDIR\gui\OrvikHost.exe"
    !insertmacro Kind ".odb" "Orvik.Session" "$(Session)"
    !insertmacro Kind ".rec" "Orvik.Recording" "$(Recording)"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayName" "OrvikHost"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKLM "${UNINSTALL}" "DisplayIcon" "$INSTDIR\gui\OrvikHost.exe"
    WriteRegStr HKLM "${UNINSTALL}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKLM "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKLM "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKLM "${UNINSTALL}" "NoModify" 1
    WriteRegDWORD HKLM "${UNINSTALL}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKLM "${UNINSTALL}" "EstimatedSize" $0
SectionEnd

Section Uninstall
    SetShellVarContext all
    SetRegView 64
    !insertmacro RequireNoneRunning
    !include "${REMOVAL}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    Delete "$SMPROGRAMS\Orvik\OrvikHost.lnk"
    RMDir "$SMPROGRAMS\Orvik"
    !insertmacro NoKind ".odb" "Orvik.Session"
    !insertmacro NoKind ".rec" "Orvik.Recording"
    DeleteRegKey HKLM "${UNINSTALL}"
SectionEnd
