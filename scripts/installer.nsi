; Gripline's setup: installs for the current user only, without administrator rights, into
; %LOCALAPPDATA%\Programs\Gripline (the program keeps its INI file beside itself and the update replaces
; its files there, so the folder must be the user's). /S installs silently; so does the uninstaller.
; scripts/package runs it:
;   makensis -DVERSION=0.1.0.134 -DAPP=<Gripline.exe> -DANALYZER=<analyzer.exe> -DOUTFILE=<setup.exe>
;            [-DICON=<.ico>] [-DSIGN_FILE=<command>] installer.nsi
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
RequestExecutionLevel user
ManifestDPIAware true

!include FileFunc.nsh
!include LogicLib.nsh
!include MUI2.nsh
!include WinMessages.nsh

!define PRODUCT "Gripline"
!define APP_EXE "Gripline.exe"
!define ANALYZER_EXE "Veltor Commercial Analyzer.exe"
!define UNINSTALLER_EXE "Uninstall.exe"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Gripline"
!define APP_WINDOW_CLASS "VeltorCommercialWindow"
!define ANALYZER_WINDOW_CLASS "VeltorAnalyzerWindow"
; Quarter seconds that the programs get to save their settings and end once asked to close.
!define CLOSE_WAIT_QUARTERS 40

Name "${PRODUCT}"
OutFile "${OUTFILE}"
InstallDir "$LOCALAPPDATA\Programs\Gripline"
; An upgrade goes where the first install went.
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${PRODUCT} ${VERSION}"
; A file that cannot be written stops the setup: it never leaves one program old and the other new.
AllowSkipFiles off

VIProductVersion "${VERSION}"
VIAddVersionKey "ProductName" "${PRODUCT}"
VIAddVersionKey "CompanyName" "${PRODUCT}"
VIAddVersionKey "FileDescription" "${PRODUCT} setup"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "LegalCopyright" "Copyright ${PRODUCT}"

; With -DSIGN_FILE=<command>, the uninstaller is signed as it is made: the command signs the file it is
; given in place (scripts/package --sign-cert).
!ifdef SIGN_FILE
  !uninstfinalize '"${SIGN_FILE}" "%1"' = 0
!endif

!ifdef ICON
  !define MUI_ICON "${ICON}"
  !define MUI_UNICON "${ICON}"
!endif
!define MUI_FINISHPAGE_RUN "$INSTDIR\${APP_EXE}"
!define MUI_FINISHPAGE_RUN_TEXT "Start ${PRODUCT}"
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"

; Sets FLAG to 0 when FILE exists and cannot be opened for writing: a running program holds it.
!macro CLEAR_IF_IN_USE FILE FLAG
  ${If} ${FileExists} "${FILE}"
    ClearErrors
    FileOpen $3 "${FILE}" a
    ${If} ${Errors}
      StrCpy ${FLAG} 0
    ${Else}
      FileClose $3
    ${EndIf}
  ${EndIf}
!macroend

; Asks every running Gripline and analyzer window to close, as its close box does (Gripline saves its
; settings then), and waits until no window is left and both programs' files can be written. A program in
; use is never overwritten: if they stay in use the setup says so, and Cancel (or a silent run) ends it
; with exit code 2 and nothing changed.
!macro DEFINE_CLOSE_RUNNING PREFIX
  Function ${PREFIX}CloseRunning
    Push $0
    Push $1
    Push $2
    Push $3
    retry:
    StrCpy $1 0  ; quarters waited
    StrCpy $2 0  ; the window last asked to close: each is asked once
    ${Do}
      FindWindow $0 "${APP_WINDOW_CLASS}"
      ${If} $0 = 0
        FindWindow $0 "${ANALYZER_WINDOW_CLASS}"
      ${EndIf}
      ${If} $0 = 0
        StrCpy $0 1
        !insertmacro CLEAR_IF_IN_USE "$INSTDIR\${APP_EXE}" $0
        !insertmacro CLEAR_IF_IN_USE "$INSTDIR\${ANALYZER_EXE}" $0
        ${If} $0 = 1
          Pop $3
          Pop $2
          Pop $1
          Pop $0
          Return
        ${EndIf}
      ${ElseIf} $0 <> $2
        DetailPrint "Asking ${PRODUCT} to close..."
        StrCpy $2 $0
        SendMessage $0 ${WM_CLOSE} 0 0 /TIMEOUT=5000
      ${EndIf}
      Sleep 250
      IntOp $1 $1 + 1
    ${LoopUntil} $1 >= ${CLOSE_WAIT_QUARTERS}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
      "${PRODUCT} is still running and must be closed first.$\n$\nClose ${PRODUCT} and its analyzer, then press Retry." \
      /SD IDCANCEL IDRETRY retry
    SetErrorLevel 2
    Quit
  FunctionEnd
!macroend
!insertmacro DEFINE_CLOSE_RUNNING ""
!insertmacro DEFINE_CLOSE_RUNNING "un."

Section "${PRODUCT}"
  SetShellVarContext current
  Call CloseRunning
  SetOutPath "$INSTDIR"
  File "/oname=${APP_EXE}" "${APP}"
  File "/oname=${ANALYZER_EXE}" "${ANALYZER}"
  WriteUninstaller "$INSTDIR\${UNINSTALLER_EXE}"
  CreateShortcut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\${APP_EXE}"

  ; What the system's list of programs shows; the size counts the programs, not the user's files.
  ${GetSize} "$INSTDIR" "/M=*.exe /S=0K /G=0" $0 $1 $2
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "${PRODUCT}"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${APP_EXE},0"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\${UNINSTALLER_EXE}"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\${UNINSTALLER_EXE}" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
SectionEnd

; Removes what the setup put there and nothing else: Veltor_profiles.ini and recordings stay, and so does
; the folder while it holds them.
Section "Uninstall"
  SetShellVarContext current
  Call un.CloseRunning
  Delete "$INSTDIR\${APP_EXE}"
  Delete "$INSTDIR\${ANALYZER_EXE}"
  Delete "$SMPROGRAMS\${PRODUCT}.lnk"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  Delete "$INSTDIR\${UNINSTALLER_EXE}"
  RMDir "$INSTDIR"
SectionEnd
