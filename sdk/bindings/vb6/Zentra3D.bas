Attribute VB_Name = "Zentra3D"
' Renders 3D image volumes with Zentra3DRendering.dll. The DLL lies beside the program (in the IDE: on the path, or in
' the current folder). Its header, Zentra3DRendering.h, is the reference for what each function does.
'
' Addresses and handles are Longs. Integers are 16 bits, as the library wants its counts and crop bounds.
Option Explicit

Public Enum RenderMode
    rmMaximum = 0
    rmMinimum = 1
    rmSum = 2
    rmSurface = 3 ' the first surface, or layered surfaces where Extra is not 0
    rmBlend = 4
    rmContrast = 5
    rmFirstHit = 6
End Enum

' What GetRGBImage tells its callback, and the answer that cancels.
Public Const ProgressCodeFailed As Long = 0
Public Const ProgressCodeStart As Long = 101
Public Const ProgressCodePercent As Long = 102
Public Const ProgressCodeNoGrey As Long = 200
Public Const ProgressCancel As Long = 200

' What a pixel without a contribution holds, in most modes and in the minimum, is beyond these: ask with < and >.
Public Const NoValue As Single = -3.4028E+38
Public Const NoMinimum As Single = 3.4028E+38

' What the helpers below raise.
Public Const ZentraErrorMemory As Long = vbObjectError + 3001
Public Const ZentraErrorCancelled As Long = vbObjectError + 3002
Public Const ZentraErrorRotation As Long = vbObjectError + 3003

Public Type Image2D
    Mem As Long
    Rows As Long
    Width As Integer
    Height As Integer
    BytesPerPixel As Long
End Type

Public Type Volume3D
    Slices As Long
    SliceRows As Long
    Width As Integer
    Height As Integer
    Depth As Integer
End Type

Public Type AxisOrder
    Axis(0 To 2) As Integer ' 0 = X, 1 = Y, 2 = Z, leftmost factor first
End Type

Public Declare Function GlobalAlloc2D Lib "Zentra3DRendering.dll" (ByVal Width As Long, ByVal Height As Long, ByVal BytesPerPixel As Long) As Long
Public Declare Function GlobalAlloc3D Lib "Zentra3DRendering.dll" (ByVal Width As Long, ByVal Height As Long, ByVal Depth As Long, ByVal BytesPerPixel As Long) As Long
Public Declare Function GlobalLock2D Lib "Zentra3DRendering.dll" (ByVal Image As Long) As Long
Public Declare Function GlobalLock3D Lib "Zentra3DRendering.dll" (ByVal Volume As Long) As Long
Public Declare Function GlobalUnlock2D Lib "Zentra3DRendering.dll" (ByVal Image As Long) As Long
Public Declare Function GlobalUnlock3D Lib "Zentra3DRendering.dll" (ByVal Volume As Long) As Long
Public Declare Sub GlobalFree2D Lib "Zentra3DRendering.dll" (ByVal Image As Long)
Public Declare Sub GlobalFree3D Lib "Zentra3DRendering.dll" (ByVal Volume As Long)
Public Declare Sub Free3DData Lib "Zentra3DRendering.dll" (ByVal Volume As Long)
' Rotation and matrices: the first element of an array of nine.
Public Declare Sub GetRotDim Lib "Zentra3DRendering.dll" (ByVal Volume As Long, Rotation As Single, ByVal X0 As Integer, ByVal X1 As Integer, ByVal Y0 As Integer, ByVal Y1 As Integer, ByVal Z0 As Integer, ByVal Z1 As Integer, Width As Integer, Height As Integer, ByVal Reserved As Long)
Public Declare Function GetRotProjection Lib "Zentra3DRendering.dll" (ByVal Volume As Long, Rotation As Single, ByVal Mode As Integer, ByVal X0 As Integer, ByVal X1 As Integer, ByVal Y0 As Integer, ByVal Y1 As Integer, ByVal Z0 As Integer, ByVal Z1 As Integer, ByVal High As Single, ByVal Low As Single, ByVal Extra As Single, Width As Integer, Height As Integer, ByVal Reserved As Long) As Long
' vbNullString: no such channel. Callback: 0, or AddressOf a function of three Longs by value in a standard module.
Public Declare Function GetRGBImage Lib "Zentra3DRendering.dll" (ByVal RedFile As String, ByVal GreenFile As String, ByVal BlueFile As String, ByVal Width As Integer, ByVal Height As Integer, ByVal Depth As Integer, ByVal Reserved1 As Long, ByVal Reserved2 As Long, ByVal Reserved3 As Long, ByVal Is8Bit As Integer, ByVal MaxDiagonal As Integer, OutMax As Single, OutMin As Single, RangeMax As Single, RangeMin As Single, ByVal User As Long, ByVal Callback As Long, ByVal KeepChannelsApart As Long) As Long
Public Declare Function SetRenderMsgTitle Lib "Zentra3DRendering.dll" (ByVal Title As String) As Long
Public Declare Sub CreateRotateMatrix Lib "Zentra3DRendering.dll" (Matrix As Double, Order As AxisOrder, ByVal AngleX As Single, ByVal AngleY As Single, ByVal AngleZ As Single)
Public Declare Sub GetAngleXY Lib "Zentra3DRendering.dll" (Matrix As Double, ByVal M02 As Double, ByVal M12 As Double, ByVal M22 As Double, AngleX As Single, AngleY As Single, ByVal AngleZ As Single)
Public Declare Sub GetAngleZX Lib "Zentra3DRendering.dll" (Matrix As Double, ByVal M01 As Double, ByVal M11 As Double, ByVal M21 As Double, AngleX As Single, AngleZ As Single, ByVal AngleY As Single)
Public Declare Sub GetAngleYZ Lib "Zentra3DRendering.dll" (Matrix As Double, ByVal M00 As Double, ByVal M10 As Double, ByVal M20 As Double, AngleY As Single, AngleZ As Single, ByVal AngleX As Single)
Public Declare Sub GetAngleXYZ Lib "Zentra3DRendering.dll" (Matrix As Double, AngleX As Single, AngleY As Single, AngleZ As Single)
Public Declare Sub GetAngleZXY Lib "Zentra3DRendering.dll" (Matrix As Double, AngleX As Single, AngleY As Single, AngleZ As Single)
Public Declare Sub GetAngleYZX Lib "Zentra3DRendering.dll" (Matrix As Double, AngleX As Single, AngleY As Single, AngleZ As Single)
Public Declare Sub ChangeOrder Lib "Zentra3DRendering.dll" (FromOrder As AxisOrder, ToOrder As AxisOrder, AngleX As Single, AngleY As Single, AngleZ As Single)
Public Declare Function AdjustGamma Lib "Zentra3DRendering.dll" (Table As Byte, ByVal Level As Single) As Long
Public Declare Function SubvolumeConvert Lib "Zentra3DRendering.dll" (ByVal Value As Long, ByVal NewScale As Long, ByVal OldScale As Long, ByVal RoundUp As Integer) As Integer

Private Declare Function GlobalHandle Lib "kernel32" (ByVal Address As Long) As Long
Private Declare Function GlobalUnlock Lib "kernel32" (ByVal Block As Long) As Long
Private Declare Function GlobalFree Lib "kernel32" (ByVal Block As Long) As Long
Private Declare Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" (Target As Any, Source As Any, ByVal Length As Long)

Private wasCancelled As Boolean
Private cancelPercent As Single

' The nine floats of a rotation by degrees about X, Y and Z, in the axis order X, Y, Z.
Public Sub ZentraRotation(Rotation() As Single, ByVal AngleX As Single, ByVal AngleY As Single, ByVal AngleZ As Single)
    Dim matrix(0 To 8) As Double, order As AxisOrder, i As Long
    For i = 0 To 2
        order.Axis(i) = i
    Next
    CreateRotateMatrix matrix(0), order, AngleX, AngleY, AngleZ
    ReDim Rotation(0 To 8)
    For i = 0 To 8
        Rotation(i) = matrix(i)
    Next
End Sub

' A grey volume of the voxels, x fastest, then y, then z. Release it with Free3DData.
Public Function ZentraVolume(Voxels() As Byte, ByVal Width As Integer, ByVal Height As Integer, ByVal Depth As Integer) As Long
    Dim volume As Long, slices As Long, rows As Long, pixels As Long, z As Long, sliceBytes As Long
    sliceBytes = CLng(Width) * Height
    If UBound(Voxels) - LBound(Voxels) + 1 <> sliceBytes * Depth Then Err.Raise 5, , "The voxels are not as many as the size says"
    volume = GlobalAlloc3D(Width, Height, Depth, 1)
    slices = GlobalLock3D(volume)
    If slices = 0 Then
        Free3DData volume
        Err.Raise ZentraErrorMemory, "Zentra3D", "Memory is short"
    End If
    For z = 0 To Depth - 1
        CopyMemory rows, ByVal slices + 4 * z, 4
        CopyMemory pixels, ByVal rows, 4
        CopyMemory ByVal pixels, Voxels(LBound(Voxels) + z * sliceBytes), sliceBytes
    Next
    GlobalUnlock3D volume
    ZentraVolume = volume
End Function

' Renders the whole volume into Pixels: three Singles per pixel, the top row first.
Public Sub ZentraProject(ByVal Volume As Long, Rotation() As Single, ByVal Mode As RenderMode, ByVal Low As Single, ByVal High As Single, ByVal Extra As Single, Pixels() As Single, Width As Integer, Height As Integer)
    Dim size As Volume3D, address As Long, block As Long
    CopyMemory size, ByVal Volume, 14
    address = GetRotProjection(Volume, Rotation(LBound(Rotation)), Mode, 1, size.Width, 1, size.Height, 1, size.Depth, High, Low, Extra, Width, Height, 0)
    If address = 0 And Width = 0 Then Err.Raise ZentraErrorRotation, "Zentra3D", "The rotation is not finite, or too large"
    If address = 0 Then Err.Raise ZentraErrorMemory, "Zentra3D", "Memory is short"
    ReDim Pixels(0 To 3 * CLng(Width) * Height - 1)
    CopyMemory Pixels(0), ByVal address, 12 * CLng(Width) * Height
    block = GlobalHandle(address) ' the address is not the handle
    GlobalUnlock block
    GlobalFree block
End Sub

' The bytes of Singles, as they lie in memory.
Public Sub ZentraBytes(Values() As Single, Bytes() As Byte)
    Dim count As Long
    count = 4 * (UBound(Values) - LBound(Values) + 1)
    ReDim Bytes(0 To count - 1)
    CopyMemory Bytes(0), Values(LBound(Values)), count
End Sub

' Loads channel files of bytes: RGB, or grey when all three names are the same; vbNullString is no such channel. Progress
' reaching CancelAt percent cancels: 101 never does. Raises VB's own error for a file that cannot be opened.
Public Function ZentraLoad(ByVal Red As String, ByVal Green As String, ByVal Blue As String, ByVal Width As Integer, ByVal Height As Integer, ByVal Depth As Integer, ByVal MaxDiagonal As Integer, ByVal CancelAt As Single, High As Single, Low As Single) As Long
    Dim rangeHigh As Single, rangeLow As Single
    CheckFile Red
    CheckFile Green
    CheckFile Blue
    wasCancelled = False
    cancelPercent = CancelAt
    ZentraLoad = GetRGBImage(Red, Green, Blue, Width, Height, Depth, 0, 0, 0, 1, MaxDiagonal, High, Low, rangeHigh, rangeLow, 0, AddressOf OnProgress, 0)
    If ZentraLoad = 0 And wasCancelled Then Err.Raise ZentraErrorCancelled, "Zentra3D", "Loading was cancelled"
    If ZentraLoad = 0 Then Err.Raise ZentraErrorMemory, "Zentra3D", "Memory is short"
End Function

' What the library calls. No error may leave it: DoEvents and forms belong behind On Error Resume Next.
Private Function OnProgress(ByVal User As Long, ByVal Code As Long, ByVal Value As Long) As Long
    Dim percent As Single
    On Error Resume Next
    If Code <> ProgressCodePercent Then Exit Function
    CopyMemory percent, Value, 4 ' the bits of a Single
    If percent >= cancelPercent Then
        wasCancelled = True
        OnProgress = ProgressCancel
    End If
End Function

' Raises the error here, before the library shows it to the user in a message box.
Private Sub CheckFile(ByVal Path As String)
    Dim file As Integer
    If Len(Path) = 0 Then Exit Sub
    file = FreeFile
    Open Path For Input Access Read Lock Write As #file
    Close #file
End Sub
