Attribute VB_Name = "Sample"
' Renders a volume in every mode and loads one from files. Run it in the folder samples/data; it prints to the immediate
' window.
Option Explicit

Private Sub PrintPicture(ByVal Name As String, ByVal Volume As Long, ByVal Mode As RenderMode, ByVal Low As Single, ByVal High As Single, ByVal Extra As Single)
    Dim rotation() As Single, pixels() As Single, width As Integer, height As Integer
    ZentraRotation rotation, 30, 40, 50
    ZentraProject Volume, rotation, Mode, Low, High, Extra, pixels, width, height
    Debug.Print Left$(Name & "         ", 9); " "; width & " x " & height & "  " & Checksum(pixels)
End Sub

' FNV-1a. VB has no unsigned 32 bits, so a Double holds them: times 2^24 + 403, modulo 2^32.
Private Function Checksum(Pixels() As Single) As String
    Dim sum As Double, lowest As Double, bytes() As Byte, i As Long
    ZentraBytes Pixels, bytes
    sum = 2166136261#
    For i = 0 To UBound(bytes)
        lowest = sum - Int(sum / 256) * 256
        sum = sum - lowest + (CLng(lowest) Xor bytes(i))
        lowest = sum - Int(sum / 256) * 256
        sum = sum * 403 + lowest * 16777216#
        sum = sum - Int(sum / 4294967296#) * 4294967296#
    Next
    lowest = sum - Int(sum / 65536) * 65536
    Checksum = Right$("000" & Hex$(Int(sum / 65536)), 4) & Right$("000" & Hex$(lowest), 4)
End Function

Public Sub Main()
    Dim voxels(0 To 61439) As Byte, volume As Long, high As Single, low As Single
    Open "grey.raw" For Binary Access Read As #1
    Get #1, , voxels
    Close #1
    volume = ZentraVolume(voxels, 48, 40, 32)
    PrintPicture "maximum", volume, rmMaximum, 0, 255, 0
    PrintPicture "minimum", volume, rmMinimum, 1, 255, 0
    PrintPicture "sum", volume, rmSum, 0, 255, 0
    PrintPicture "surface", volume, rmSurface, 60, 256, 0
    PrintPicture "layers", volume, rmSurface, 60, 256, 0.5
    PrintPicture "blend", volume, rmBlend, 0, 255, 0.5
    PrintPicture "contrast", volume, rmContrast, 0, 256, 0
    PrintPicture "first hit", volume, rmFirstHit, 60, 255, 0
    Free3DData volume

    volume = ZentraLoad("red.raw", "green.raw", "blue.raw", 48, 40, 32, 60, 101, high, low)
    Debug.Print "loaded    41 x 34 x 27, display range " & low & " to " & high
    PrintPicture "colour", volume, rmMaximum, 0, 765, 0
    Free3DData volume

    On Error Resume Next
    volume = ZentraLoad("red.raw", "green.raw", "blue.raw", 48, 40, 32, 60, 50, high, low)
    If Err.Number = ZentraErrorCancelled Then Debug.Print "cancelled at 50 %"
End Sub
