{ Renders 3D image volumes with Zentra3DRendering.dll, a Windows DLL for Win32 or Win64, in Delphi and in Free Pascal.
  The DLL lies beside the program. Its header, Zentra3DRendering.h, is the reference for what each function does. }
unit Zentra3D;

{$IFDEF FPC}{$MODE DELPHI}{$PACKRECORDS C}{$ELSE}{$ALIGN 8}{$ENDIF}
{$IFNDEF WIN32}{$IFNDEF WIN64}
  {$MESSAGE FATAL 'Zentra3DRendering.dll is a Windows DLL: choose the target platform Win32 or Win64'}
{$ENDIF}{$ENDIF}

interface

uses
  SysUtils, Classes, Windows;

{ ---- The DLL as it is ---- }

const
  ZentraDll = 'Zentra3DRendering.dll';

  { What GetRGBImage tells its callback, and the answer that cancels. }
  ProgressCodeFailed = 0;
  ProgressCodeStart = 101;
  ProgressCodePercent = 102;
  ProgressCodeNoGrey = 200;
  ProgressCancel = 200;

  { What a pixel without a contribution holds, in most modes and in the minimum. }
  NoValue: Single = -3.4028234663852886e38;
  NoMinimum: Single = 3.4028234663852886e38;

type
  PPByte = ^PByte;
  PPPByte = ^PPByte;

  PImage2D = ^TImage2D;
  PPImage2D = ^PImage2D;
  TImage2D = record
    Mem: THandle;            { the pixels' block of global memory }
    Rows: PPByte;            { Height row addresses while locked, else nil }
    Width, Height: Word;
    BytesPerPixel: LongWord; { 1 grey; 3 red, green, blue; 4 a Single }
  end;

  PVolume3D = ^TVolume3D;
  TVolume3D = record
    Slices: PPImage2D;
    SliceRows: PPPByte;      { Depth row tables while locked, else nil }
    Width, Height, Depth: Word;
  end;

  { The factors of a rotation, leftmost first: 0 = X, 1 = Y, 2 = Z. }
  TAxisOrder = array[0..2] of SmallInt;
  TZentraMatrix = array[0..8] of Double;
  TZentraRotation = array[0..8] of Single;

  TProgressCallback = function(User: NativeUInt; Code: Integer; Value: LongWord): Integer; stdcall;

const
  OrderXYZ: TAxisOrder = (0, 1, 2);

function GlobalAlloc2D(Width, Height, BytesPerPixel: LongWord): PImage2D; stdcall; external ZentraDll;
function GlobalAlloc3D(Width, Height, Depth, BytesPerPixel: LongWord): PVolume3D; stdcall; external ZentraDll;
function GlobalLock2D(Image: PImage2D): PPByte; stdcall; external ZentraDll;
function GlobalLock3D(Volume: PVolume3D): PPPByte; stdcall; external ZentraDll;
function GlobalUnlock2D(Image: PImage2D): Integer; stdcall; external ZentraDll;
function GlobalUnlock3D(Volume: PVolume3D): Integer; stdcall; external ZentraDll;
procedure GlobalFree2D(Image: PImage2D); stdcall; external ZentraDll;
procedure GlobalFree3D(Volume: PVolume3D); stdcall; external ZentraDll;
procedure Free3DData(Volume: PVolume3D); stdcall; external ZentraDll;
procedure GetRotDim(Volume: PVolume3D; const Rotation: TZentraRotation; X0, X1, Y0, Y1, Z0, Z1: SmallInt;
  out Width, Height: Word; Reserved: Integer); stdcall; external ZentraDll;
function GetRotProjection(Volume: PVolume3D; const Rotation: TZentraRotation; Mode, X0, X1, Y0, Y1, Z0, Z1: SmallInt;
  High, Low, Extra: Single; out Width, Height: Word; Reserved: Integer): PSingle; stdcall; external ZentraDll;
function GetRGBImage(Red, Green, Blue: PAnsiChar; Width, Height, Depth: SmallInt; Reserved1, Reserved2,
  Reserved3: Integer; Is8Bit, MaxDiagonal: SmallInt; OutMax, OutMin, RangeMax, RangeMin: PSingle; User: NativeUInt;
  Callback: TProgressCallback; KeepChannelsApart: Integer): PVolume3D; stdcall; external ZentraDll;
function SetRenderMsgTitle(Title: PAnsiChar): PAnsiChar; stdcall; external ZentraDll;
procedure CreateRotateMatrix(out Matrix: TZentraMatrix; const Order: TAxisOrder; AngleX, AngleY, AngleZ: Single);
  stdcall; external ZentraDll;
procedure GetAngleXY(var Matrix: TZentraMatrix; M02, M12, M22: Double; out AngleX, AngleY: Single; AngleZ: Single);
  stdcall; external ZentraDll;
procedure GetAngleZX(var Matrix: TZentraMatrix; M01, M11, M21: Double; out AngleX, AngleZ: Single; AngleY: Single);
  stdcall; external ZentraDll;
procedure GetAngleYZ(var Matrix: TZentraMatrix; M00, M10, M20: Double; out AngleY, AngleZ: Single; AngleX: Single);
  stdcall; external ZentraDll;
procedure GetAngleXYZ(const Matrix: TZentraMatrix; out AngleX, AngleY, AngleZ: Single); stdcall; external ZentraDll;
procedure GetAngleZXY(const Matrix: TZentraMatrix; out AngleX, AngleY, AngleZ: Single); stdcall; external ZentraDll;
procedure GetAngleYZX(const Matrix: TZentraMatrix; out AngleX, AngleY, AngleZ: Single); stdcall; external ZentraDll;
procedure ChangeOrder(const FromOrder, ToOrder: TAxisOrder; var AngleX, AngleY, AngleZ: Single); stdcall;
  external ZentraDll;
function AdjustGamma(Table: PByte; Level: Single): Integer; stdcall; external ZentraDll;
function SubvolumeConvert(Value, NewScale, OldScale: Integer; RoundUp: SmallInt): SmallInt; stdcall;
  external ZentraDll;

{ ---- The same for everyday use: objects, dynamic arrays, exceptions ---- }

type
  TRenderMode = (rmMaximum, rmMinimum, rmSum, rmSurface, rmBlend, rmContrast, rmFirstHit);

  EZentraError = class(Exception);
  EZentraMemoryError = class(EZentraError);
  { Silent, as every EAbort, unless it is caught. }
  EZentraCancelled = class(EAbort);

  { A crop box in voxels, 1-based, both ends inclusive. }
  TZentraBox = record
    X0, X1, Y0, Y1, Z0, Z1: SmallInt;
  end;

  TZentraView = record
    Mode: TRenderMode;
    Low, High: Single;  { voxels in between count; of RGB volumes, the sum of the channels }
    Extra: Single;      { attenuation of layered surfaces, transparency of blends }
    Crop: TZentraBox;   { all zeroes: the whole volume }
  end;

  TZentraPicture = record
    Width, Height: Integer;
    Pixels: array of Single; { three per pixel, the top row first }
  end;

  { The percentage of the running phase; phases follow one another. An exception that leaves it cancels and is raised
    again by the constructor. }
  TZentraProgress = procedure(Percent: Single; var Cancel: Boolean) of object;

  { No two threads may use one volume at the same time. }
  TZentraVolume = class
  private
    FHandle: PVolume3D;
    FDisplayLow, FDisplayHigh: Single;
    function GetWidth: Integer;
    function GetHeight: Integer;
    function GetDepth: Integer;
  public
    { Copies voxels, x fastest, then y, then z: one byte per voxel is grey, three are red, green, blue. }
    constructor Create(Width, Height, Depth: Integer; const Voxels: TBytes; BytesPerVoxel: Integer = 1);
    { Loads up to three raw files of one stored size, RGB, or grey when all three names are the same; an empty name is
      no such channel. MaxDiagonal 0: as large as it is stored. Errors: EFOpenError, EZentraCancelled,
      EZentraMemoryError. }
    constructor CreateFromFiles(const Red, Green, Blue: string; Width, Height, Depth: Integer;
      MaxDiagonal: Integer = 0; Progress: TZentraProgress = nil; AreSingles: Boolean = False;
      KeepChannelsApart: Boolean = False);
    destructor Destroy; override;
    function Project(const Rotation: TZentraRotation; const View: TZentraView): TZentraPicture;
    property Handle: PVolume3D read FHandle;
    property Width: Integer read GetWidth;
    property Height: Integer read GetHeight;
    property Depth: Integer read GetDepth;
    { The range to display, of a volume from files. }
    property DisplayLow: Single read FDisplayLow;
    property DisplayHigh: Single read FDisplayHigh;
  end;

{ One rotation of so many degrees about each axis. }
function ZentraRotation(AngleX, AngleY, AngleZ: Single): TZentraRotation; overload;
function ZentraRotation(AngleX, AngleY, AngleZ: Single; const Order: TAxisOrder): TZentraRotation; overload;
function ZentraView(Mode: TRenderMode; Low, High: Single; Extra: Single = 0): TZentraView;

implementation

const
  Longest = 32767;

type
  PLoad = ^TLoad;
  TLoad = record
    Progress: TZentraProgress;
    Cancelled: Boolean;
    Raised: TObject;
  end;

function ZentraRotation(AngleX, AngleY, AngleZ: Single): TZentraRotation;
begin
  Result := ZentraRotation(AngleX, AngleY, AngleZ, OrderXYZ);
end;

function ZentraRotation(AngleX, AngleY, AngleZ: Single; const Order: TAxisOrder): TZentraRotation;
var
  Matrix: TZentraMatrix;
  I: Integer;
begin
  CreateRotateMatrix(Matrix, Order, AngleX, AngleY, AngleZ);
  for I := 0 to 8 do
    Result[I] := Matrix[I];
end;

function ZentraView(Mode: TRenderMode; Low, High, Extra: Single): TZentraView;
begin
  FillChar(Result, SizeOf(Result), 0);
  Result.Mode := Mode;
  Result.Low := Low;
  Result.High := High;
  Result.Extra := Extra;
end;

procedure CheckSize(Width, Height, Depth: Integer);
begin
  if (Width < 1) or (Height < 1) or (Depth < 1) or (Width > Longest) or (Height > Longest) or (Depth > Longest) then
    raise EZentraError.CreateFmt('%d x %d x %d: each length is 1 to %d', [Width, Height, Depth, Longest]);
end;

procedure RaiseMemory;
begin
  raise EZentraMemoryError.Create('Zentra3DRendering: memory is short');
end;

constructor TZentraVolume.Create(Width, Height, Depth: Integer; const Voxels: TBytes; BytesPerVoxel: Integer);
var
  SliceBytes: Int64;
  Slices: PPPByte;
  Z: Integer;
begin
  inherited Create;
  CheckSize(Width, Height, Depth);
  if (BytesPerVoxel <> 1) and (BytesPerVoxel <> 3) then
    raise EZentraError.CreateFmt('%d bytes per voxel: only 1 and 3 can be rendered', [BytesPerVoxel]);
  SliceBytes := Int64(Width) * Height * BytesPerVoxel;
  if Length(Voxels) <> SliceBytes * Depth then
    raise EZentraError.CreateFmt('%d bytes given, %d wanted', [Length(Voxels), SliceBytes * Depth]);
  FHandle := GlobalAlloc3D(Width, Height, Depth, BytesPerVoxel);
  Slices := GlobalLock3D(FHandle);
  if Slices = nil then
    RaiseMemory; { the destructor releases what there is }
  for Z := 0 to Depth - 1 do
  begin
    Move(Voxels[SliceBytes * Z], Slices^^^, SliceBytes); { the rows of a slice follow one another }
    Inc(Slices);
  end;
  GlobalUnlock3D(FHandle);
end;

destructor TZentraVolume.Destroy;
begin
  Free3DData(FHandle);
  inherited Destroy;
end;

function TZentraVolume.GetWidth: Integer;
begin
  Result := FHandle^.Width;
end;

function TZentraVolume.GetHeight: Integer;
begin
  Result := FHandle^.Height;
end;

function TZentraVolume.GetDepth: Integer;
begin
  Result := FHandle^.Depth;
end;

function TZentraVolume.Project(const Rotation: TZentraRotation; const View: TZentraView): TZentraPicture;
var
  Pixels: PSingle;
  Block: THandle;
  Box: TZentraBox;
  Width, Height: Word;
begin
  Box := View.Crop;
  if (Box.X0 = 0) and (Box.X1 = 0) and (Box.Y0 = 0) and (Box.Y1 = 0) and (Box.Z0 = 0) and (Box.Z1 = 0) then
  begin
    Box.X0 := 1;
    Box.X1 := FHandle^.Width;
    Box.Y0 := 1;
    Box.Y1 := FHandle^.Height;
    Box.Z0 := 1;
    Box.Z1 := FHandle^.Depth;
  end;
  Pixels := GetRotProjection(FHandle, Rotation, Ord(View.Mode), Box.X0, Box.X1, Box.Y0, Box.Y1, Box.Z0, Box.Z1,
    View.High, View.Low, View.Extra, Width, Height, 0);
  if Pixels = nil then
  begin
    if Width = 0 then
      raise EZentraError.Create('The rotation is not finite, or too large');
    RaiseMemory;
  end;
  Block := GlobalHandle(Pixels); { the address is not the handle }
  try
    Result.Width := Width;
    Result.Height := Height;
    SetLength(Result.Pixels, 3 * Integer(Width) * Height);
    Move(Pixels^, Result.Pixels[0], Length(Result.Pixels) * SizeOf(Single));
  finally
    GlobalUnlock(Block);
    GlobalFree(Block);
  end;
end;

{ What the library calls. No exception may pass through it. }
function OnProgress(User: NativeUInt; Code: Integer; Value: LongWord): Integer; stdcall;
var
  Load: PLoad;
  Percent: Single;
begin
  Result := 0;
  if Code <> ProgressCodePercent then
    Exit;
  Load := PLoad(User);
  Move(Value, Percent, SizeOf(Percent)); { the bits of a Single }
  try
    Load^.Progress(Percent, Load^.Cancelled);
  except
    Load^.Raised := TObject(AcquireExceptionObject);
    Load^.Cancelled := True;
  end;
  if Load^.Cancelled then
    Result := ProgressCancel;
end;

{ The path in the system's code page; empty when the way back does not lead to the same path. }
function Narrow(const Path: WideString): AnsiString;
var
  Length: Integer;
  Back: WideString;
begin
  SetLength(Result, 4 * System.Length(Path));
  Length := WideCharToMultiByte(CP_ACP, 0, PWideChar(Path), System.Length(Path), PAnsiChar(Result),
    System.Length(Result), nil, nil);
  SetLength(Result, Length);
  SetLength(Back, System.Length(Path));
  Length := MultiByteToWideChar(CP_ACP, 0, PAnsiChar(Result), System.Length(Result), PWideChar(Back),
    System.Length(Back));
  if (Length <> System.Length(Path)) or (Back <> Path) then
    Result := '';
end;

{ The path as the library takes it. What the system's code page cannot say goes by its short name. A file that cannot be
  opened, or that somebody may write to, raises EFOpenError here, before the library shows it to the user in a message
  box. }
function ChannelName(const Path: string): AnsiString;
var
  Short: WideString;
begin
  Result := '';
  if Path = '' then
    Exit;
  TFileStream.Create(Path, fmOpenRead or fmShareDenyWrite).Free;
  Result := Narrow(WideString(Path));
  if Result = '' then
  begin
    SetLength(Short, Longest);
    SetLength(Short, GetShortPathNameW(PWideChar(WideString(Path)), PWideChar(Short), Longest));
    if Short <> '' then
      Result := Narrow(Short);
  end;
  if Result = '' then
    raise EFOpenError.CreateFmt('%s: the name cannot be said in the system''s code page', [Path]);
end;

function PointerOrNil(const Name: AnsiString): PAnsiChar;
begin
  Result := nil;
  if Name <> '' then
    Result := PAnsiChar(Name);
end;

constructor TZentraVolume.CreateFromFiles(const Red, Green, Blue: string; Width, Height, Depth: Integer;
  MaxDiagonal: Integer; Progress: TZentraProgress; AreSingles, KeepChannelsApart: Boolean);
var
  Load: TLoad;
  Callback: TProgressCallback;
  RedName, GreenName, BlueName: AnsiString;
begin
  inherited Create;
  CheckSize(Width, Height, Depth);
  RedName := ChannelName(Red);
  GreenName := ChannelName(Green);
  BlueName := ChannelName(Blue);
  if (RedName = '') and (GreenName = '') and (BlueName = '') then
    raise EZentraError.Create('No channel file is named');
  if (MaxDiagonal <= 0) or (MaxDiagonal > Longest) then
    MaxDiagonal := Longest;
  Callback := nil;
  if Assigned(Progress) then
    Callback := OnProgress;
  Load.Progress := Progress;
  Load.Cancelled := False;
  Load.Raised := nil;
  FHandle := GetRGBImage(PointerOrNil(RedName), PointerOrNil(GreenName), PointerOrNil(BlueName), Width, Height, Depth,
    0, 0, 0, Ord(not AreSingles), MaxDiagonal, @FDisplayHigh, @FDisplayLow, nil, nil, NativeUInt(@Load), Callback,
    Ord(KeepChannelsApart));
  if Load.Raised <> nil then
    raise Load.Raised;
  if (FHandle = nil) and Load.Cancelled then
    raise EZentraCancelled.Create('Loading was cancelled');
  if FHandle = nil then
    RaiseMemory;
end;

end.
