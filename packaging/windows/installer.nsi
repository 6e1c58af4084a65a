; The installer, for all users or for one: ChanplanEditor-VERSION-setup.exe [/S] [/AllUsers | /CurrentUser] [/D=FOLDER]
; Its exit status is 2 when the editor is running.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
Name "Chanplan Editor"
OutFile "${SETUP}"
ManifestDPIAware true

!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Chanplan Editor"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "Chanplan Editor"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"
!define MUI_ICON "share\icons\chanplan-editor.ico"
!define MUI_UNICON "share\icons\chanplan-editor.ico"
!define MUI_FINISHPAGE_RUN "$INSTDIR\bin\chanplan-editor.exe"
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh

VIProductVersion "${VERSION}.0.0"
VIAddVersionKey ProductName "Chanplan Editor"
VIAddVersionKey FileDescription "Chanplan Editor Setup"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey LegalCopyright "The Chanplan Editor developers"

!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

Var wanted
Function .onInit
  SetRegView 64
  StrCpy $wanted $INSTDIR ; what /D says, which the macro would forget
  !insertmacro MULTIUSER_INIT
  ${If} $wanted != ""
    StrCpy $INSTDIR $wanted
  ${EndIf}
FunctionEnd

Function un.onInit
  SetRegView 64
  !insertmacro MULTIUSER_UNINIT
FunctionEnd

; A program that runs can neither be replaced nor deleted.
!macro RefuseWhileItRuns
  ClearErrors
  Delete "$INSTDIR\bin\chanplan-editor.exe"
  ${If} ${Errors}
    MessageBox MB_OK|MB_ICONEXCLAMATION "Chanplan Editor is running: close it and start again." /SD IDOK
    SetErrorLevel 2
    Quit
  ${EndIf}
!macroend

!macro TellDesktop
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)' ; SHCNE_ASSOCCHANGED
!macroend

Section
  !insertmacro RefuseWhileItRuns
  SetOutPath $INSTDIR
  File /r "${STAGE}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Chanplan Editor.lnk" "$INSTDIR\bin\chanplan-editor.exe"

  ; Signatures are called *.sig too: what opens them already keeps doing so.
  WriteRegStr SHCTX "Software\Classes\Chanplans.Table" "" "Signal Standard table"
  WriteRegStr SHCTX "Software\Classes\Chanplans.Table\DefaultIcon" "" "$INSTDIR\bin\chanplan-editor.exe,0"
  WriteRegStr SHCTX "Software\Classes\Chanplans.Table\shell\open\command" "" \
    '"$INSTDIR\bin\chanplan-editor.exe" -- "%1"'
  WriteRegStr SHCTX "Software\Classes\.sig\OpenWithProgids" "Chanplans.Table" ""
  ReadRegStr $0 HKCR ".sig" ""
  ReadRegStr $1 HKCU "Software\Classes\.sig" ""
  ReadRegStr $2 HKLM "Software\Classes\.sig" ""
  ${If} "$0$1$2" == ""
    WriteRegStr SHCTX "Software\Classes\.sig" "" "Chanplans.Table"
  ${EndIf}

  WriteRegStr SHCTX "${UNINSTALL}" "DisplayName" "Chanplan Editor"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" "DisplayIcon" "$INSTDIR\bin\chanplan-editor.exe,0"
  WriteRegStr SHCTX "${UNINSTALL}" "Publisher" "The Chanplan Editor developers"
  WriteRegStr SHCTX "${UNINSTALL}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UNINSTALL}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode /S'
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL}" "NoRepair" 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UNINSTALL}" "EstimatedSize" $0
  !insertmacro TellDesktop
SectionEnd

; The user's tables and settings stay.
Section Uninstall
  !insertmacro RefuseWhileItRuns
  !include "build/windows/uninstall.nsh"
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath $TEMP ; no folder that is in use can be removed
  RMDir $INSTDIR
  Delete "$SMPROGRAMS\Chanplan Editor.lnk"
  ReadRegStr $0 SHCTX "Software\Classes\.sig" ""
  ${If} $0 == "Chanplans.Table"
    DeleteRegValue SHCTX "Software\Classes\.sig" ""
  ${EndIf}
  DeleteRegValue SHCTX "Software\Classes\.sig\OpenWithProgids" "Chanplans.Table"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.sig\OpenWithProgids"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.sig"
  DeleteRegKey SHCTX "Software\Classes\Chanplans.Table"
  DeleteRegKey SHCTX "${UNINSTALL}"
  !insertmacro TellDesktop
SectionEnd
