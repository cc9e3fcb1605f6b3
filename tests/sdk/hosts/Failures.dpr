{ What a host in Delphi or Free Pascal sees of failures. Run in the folder samples/data. Prints the checks that fail, and
  ends with their number. }
program Failures;

{$APPTYPE CONSOLE}{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

uses SysUtils, Classes, Windows, Zentra3D;

type
  EMine = class(Exception);

  THost = class
    procedure RaiseMine(Percent: Single; var Cancel: Boolean);
    procedure CancelLate(Percent: Single; var Cancel: Boolean);
    procedure Remember(Percent: Single; var Cancel: Boolean);
  end;

  TMemoryCounters = record
    Size, PageFaults, PeakWorkingSet, WorkingSet: LongWord;
    Quotas: array[0..3] of LongWord;
    PagefileUsage, PeakPagefileUsage: LongWord;
  end;

function K32GetProcessMemoryInfo(Process: THandle; var Counters: TMemoryCounters; Size: LongWord): LongBool; stdcall;
  external 'kernel32.dll';

var
  Failed: Integer;
  Last: Single;
  Host: THost;
  Volume: TZentraVolume;
  Turn: TZentraRotation;

procedure THost.RaiseMine(Percent: Single; var Cancel: Boolean);
begin
  raise EMine.Create('mine');
end;

procedure THost.CancelLate(Percent: Single; var Cancel: Boolean);
begin
  Cancel := Percent > 90;
end;

procedure THost.Remember(Percent: Single; var Cancel: Boolean);
begin
  Last := Percent;
end;

procedure Check(const Name: string; Passed: Boolean);
begin
  if Passed then
    Exit;
  Inc(Failed);
  WriteLn(Name);
end;

{ The class name of what loading raises; empty when it succeeds. }
function LoadRaises(const Red: string; Depth: Integer; Progress: TZentraProgress): string;
begin
  Result := '';
  try
    TZentraVolume.CreateFromFiles(Red, 'green.raw', 'blue.raw', 48, 40, Depth, 0, Progress).Free;
  except
    on E: Exception do
      Result := E.ClassName;
  end;
end;

function ProjectRaises(const Rotation: TZentraRotation): string;
begin
  Result := '';
  try
    Volume.Project(Rotation, ZentraView(rmMaximum, 0, 255));
  except
    on E: Exception do
      Result := E.ClassName;
  end;
end;

function PrivateBytes: LongWord;
var
  Counters: TMemoryCounters;
begin
  Counters.Size := SizeOf(Counters);
  K32GetProcessMemoryInfo(GetCurrentProcess, Counters, SizeOf(Counters));
  Result := Counters.PagefileUsage;
end;

procedure CheckMemory(const Name: string; Loads: Boolean);
var
  I: Integer;
  Before: LongWord;
begin
  Before := 0;
  for I := 1 to 400 do
  begin
    if I = 200 then
      Before := PrivateBytes;
    if Loads then
    begin
      LoadRaises('red.raw', 32, Host.RaiseMine);
      LoadRaises('red.raw', 32, Host.CancelLate);
    end
    else
      Volume.Project(Turn, ZentraView(rmMaximum, 0, 255));
  end;
  Check(Name, Integer(PrivateBytes - Before) < 8000000);
end;

var
  Voxels: TBytes;
  Writer: TFileStream;
begin
  Host := THost.Create;
  Turn := ZentraRotation(30, 40, 50);
  Check('a file that is not there', LoadRaises('none.raw', 32, nil) = 'EFOpenError');
  Writer := TFileStream.Create('green.raw', fmOpenReadWrite or fmShareDenyNone);
  Check('a file that somebody may write to', LoadRaises('red.raw', 32, nil) = 'EFOpenError');
  Writer.Free;
  Check('a size of nothing', LoadRaises('red.raw', 0, nil) = 'EZentraError');
  Check('what progress raises', LoadRaises('red.raw', 32, Host.RaiseMine) = 'EMine');
  Check('a cancel', LoadRaises('red.raw', 32, Host.CancelLate) = 'EZentraCancelled');
  Check('progress comes to the end', (LoadRaises('red.raw', 32, Host.Remember) = '') and (Last = 100));
  CheckMemory('cancelled loads are released', True);

  SetLength(Voxels, 48 * 40 * 32);
  Volume := TZentraVolume.Create(48, 40, 32, Voxels);
  Check('a rotation', ProjectRaises(Turn) = '');
  CheckMemory('pictures are released', False);
  Turn[0] := 3e38;
  Check('no rotation', ProjectRaises(Turn) = 'EZentraError');
  Volume.Free;
  try
    SetLength(Voxels, 7);
    TZentraVolume.Create(48, 40, 32, Voxels).Free;
    Check('too few voxels', False);
  except
    on EZentraError do;
  end;
  Host.Free;
  Halt(Failed);
end.
