; The installer: for one user or for all, asks for the folder of VST 2 plug-ins, and removes all that it has put there.
; Silent: /S, with /AllUsers or /CurrentUser and, last and without quotes, /D=FOLDER.
;   makensis -DVERSION=1.30 -DFILES=FOLDER -DOUTPUT=FILE installer.nsi
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
!define NAME "ORVA Audio To MIDI"
!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "VSTPlugins"
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh

Name "${NAME} ${VERSION}"
OutFile "${OUTPUT}"
BrandingText "ORVA Labs"
!define MUI_ABORTWARNING
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!define MUI_DIRECTORYPAGE_TEXT_TOP "Choose the folder in which your hosts look for VST 2 plug-ins. ${NAME} goes into a \
folder of its own there. The VST 3 plug-in goes where all hosts look for it."
!define MUI_DIRECTORYPAGE_TEXT_DESTINATION "Folder of VST 2 plug-ins"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

Var vst3

!macro Begin un
Function ${un}.onInit
    SetRegView 64
    Push $INSTDIR ; of /D, or the one that is left
    !insertmacro MULTIUSER_${un}INIT
    Pop $0
    StrCmp $0 "" +2
    StrCpy $INSTDIR $0
    StrCpy $vst3 "$COMMONFILES64\VST3"
    StrCmp $MultiUser.InstallMode AllUsers +2
    StrCpy $vst3 "$LOCALAPPDATA\Programs\Common\VST3"
FunctionEnd
!macroend
!insertmacro Begin ""
!insertmacro Begin un

Section "VST 2, 64 bits"
    SectionIn RO
    SetOutPath "$INSTDIR\${NAME}"
    File "${FILES}/orva_vst.dll"
    File "${FILES}/orva_vst.html"
    File /r "${FILES}/licences"
    WriteUninstaller "$INSTDIR\${NAME}\uninstall.exe"
    WriteRegStr SHCTX "${ENTRY}" DisplayName "${NAME} ${VERSION}"
    WriteRegStr SHCTX "${ENTRY}" DisplayVersion "${VERSION}"
    WriteRegStr SHCTX "${ENTRY}" Publisher "ORVA Labs"
    WriteRegStr SHCTX "${ENTRY}" UninstallString '"$INSTDIR\${NAME}\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${ENTRY}" QuietUninstallString '"$INSTDIR\${NAME}\uninstall.exe" /$MultiUser.InstallMode /S'
    WriteRegDWORD SHCTX "${ENTRY}" NoModify 1
    WriteRegDWORD SHCTX "${ENTRY}" NoRepair 1
    ${GetSize} "$INSTDIR\${NAME}" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${ENTRY}" EstimatedSize $0
SectionEnd

Section "VST 3, 64 bits"
    SetOutPath "$vst3"
    File /r "${FILES}/orva.vst3"
SectionEnd

Section /o "VST 2 for hosts of 32 bits"
    SetOutPath "$INSTDIR\${NAME}"
    File "${FILES}/orva_vst_32.dll"
SectionEnd

; What a user may have put there stays, and the settings.
Section Uninstall
    Delete "$INSTDIR\orva_vst.dll"
    Delete "$INSTDIR\orva_vst_32.dll"
    Delete "$INSTDIR\orva_vst.html"
    RMDir /r "$INSTDIR\licences"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    RMDir /r "$vst3\orva.vst3"
    DeleteRegKey SHCTX "${ENTRY}"
SectionEnd
