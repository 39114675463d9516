<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>AEPoint</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
    <message>
        <source>No. </source>
        <translation>番号 </translation>
    </message>
    <message>
        <source>Use</source>
        <translation>使用</translation>
    </message>
    <message>
        <source>   T. Rat.</source>
        <translation>   厚さ比</translation>
    </message>
    <message>
        <source>  V. Point</source>
        <translation>  V 点</translation>
    </message>
    <message>
        <source>  Energy(eV)</source>
        <translation>  エネルギー(eV)</translation>
    </message>
    <message>
        <source>  mut(Ref 1)</source>
        <translation>  μt(参照 1)</translation>
    </message>
    <message>
        <source>  mut(Ref 2)</source>
        <translation>  μt(参照 2)</translation>
    </message>
    <message>
        <source>  mut(Target)</source>
        <translation>  μt(試料)</translation>
    </message>
    <message>
        <source>   mut(Blank)</source>
        <translation>   μt(ブランク)</translation>
    </message>
    <message>
        <source>   2D </source>
        <translation>   2次元 </translation>
    </message>
</context>
<context>
    <name>AFileSelect</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
    <message>
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Sel.</source>
        <translation>選択</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
</context>
<context>
    <name>AXafsFileSelect</name>
    <message>
        <source>Eng.[eV]</source>
        <translation></translation>
    </message>
    <message>
        <source>mut</source>
        <translation></translation>
    </message>
    <message>
        <source>Edge Jump(1) : %1</source>
        <translation>エッジジャンプ(1) : %1</translation>
    </message>
    <message>
        <source>Edge Jump(2) : %1</source>
        <translation>エッジジャンプ(2) : %1</translation>
    </message>
</context>
<context>
    <name>Body</name>
    <message>
        <source>MainWindow</source>
        <translation>メインウィンドウ</translation>
    </message>
</context>
<context>
    <name>DispABase</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
    <message>
        <source>TextLabel</source>
        <translation>題名</translation>
    </message>
    <message>
        <source>P/D</source>
        <translation>着脱</translation>
    </message>
    <message>
        <source> x:</source>
        <translation> x:</translation>
    </message>
    <message>
        <source>y:</source>
        <translation>y:</translation>
    </message>
    <message>
        <source>x-title</source>
        <translation></translation>
    </message>
    <message>
        <source>y-title</source>
        <translation></translation>
    </message>
</context>
<context>
    <name>DispArea</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
</context>
<context>
    <name>Displays</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
    <message>
        <source>Ref1</source>
        <translation>参照試料 1</translation>
    </message>
    <message>
        <source>Ref2</source>
        <translation>参照試料 2</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>試料</translation>
    </message>
    <message>
        <source>Muts</source>
        <translation>すべての μt</translation>
    </message>
    <message>
        <source>LCF vs 4PS</source>
        <translation>LCF と 4 点法</translation>
    </message>
    <message>
        <source>Histgram of a</source>
        <translation>価数のヒストグラム</translation>
    </message>
    <message>
        <source>Histgram of t</source>
        <translation>厚さのヒストグラム</translation>
    </message>
    <message>
        <source>t/a</source>
        <translation>厚さ / 価数</translation>
    </message>
    <message>
        <source>M2/M3</source>
        <translation>M2/M3</translation>
    </message>
</context>
<context>
    <name>FourPs</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
    <message>
        <source>XAFS spectra</source>
        <translation>XAFS スペクトル</translation>
    </message>
    <message>
        <source>Ref 1</source>
        <translation>参照試料 1</translation>
    </message>
    <message>
        <source>Valence</source>
        <translation>価数</translation>
    </message>
    <message>
        <source>2</source>
        <translation></translation>
    </message>
    <message>
        <source>Target</source>
        <translation>試料</translation>
    </message>
    <message>
        <source>Ref 2</source>
        <translation>参照試料 2</translation>
    </message>
    <message>
        <source>3</source>
        <translation></translation>
    </message>
    <message>
        <source>Blank</source>
        <translation>ブランク</translation>
    </message>
    <message>
        <source>Disp. Only</source>
        <translation>表示のみ</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>取り除く</translation>
    </message>
    <message>
        <source>Params for Vic. Lines</source>
        <translation>ビクトリーン線の範囲</translation>
    </message>
    <message>
        <source>Edge[eV]</source>
        <translation>吸収端 [eV]</translation>
    </message>
    <message>
        <source>8350</source>
        <translation></translation>
    </message>
    <message>
        <source>Pre Edge End [eV]</source>
        <translation>吸収端前の終わり [eV]</translation>
    </message>
    <message>
        <source>-50</source>
        <translation></translation>
    </message>
    <message>
        <source>Post Edge Start [eV]</source>
        <translation>吸収端後の始まり [eV]</translation>
    </message>
    <message>
        <source>100</source>
        <translation></translation>
    </message>
    <message>
        <source>Data Processing</source>
        <translation>データ処理</translation>
    </message>
    <message>
        <source>Show Graphs</source>
        <translation>グラフを表示</translation>
    </message>
    <message>
        <source>Exec. and Results</source>
        <translation>計算と結果</translation>
    </message>
    <message>
        <source>Calc.</source>
        <translation>計算</translation>
    </message>
    <message>
        <source>LCF</source>
        <translation></translation>
    </message>
    <message>
        <source>Conds</source>
        <translation>計算条件</translation>
    </message>
    <message>
        <source>4p Meth.</source>
        <translation>4 点法</translation>
    </message>
    <message>
        <source>2D Data</source>
        <translation>2次元データ</translation>
    </message>
    <message>
        <source>Write</source>
        <translation>書き出す</translation>
    </message>
    <message>
        <source>Hist G.</source>
        <translation>ヒストグラム</translation>
    </message>
    <message>
        <source>From</source>
        <translation>始まり</translation>
    </message>
    <message>
        <source>To</source>
        <translation>終わり</translation>
    </message>
    <message>
        <source>Boxes</source>
        <translation>区間数</translation>
    </message>
    <message>
        <source>    II/III</source>
        <translation>    価数</translation>
    </message>
    <message>
        <source>1.5</source>
        <translation></translation>
    </message>
    <message>
        <source>3.5</source>
        <translation></translation>
    </message>
    <message>
        <source>41</source>
        <translation></translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>自動</translation>
    </message>
    <message>
        <source>Thick</source>
        <translation>厚さ</translation>
    </message>
    <message>
        <source>-0.2</source>
        <translation></translation>
    </message>
    <message>
        <source>1.2</source>
        <translation></translation>
    </message>
    <message>
        <source>T Rat. Type:</source>
        <translation>厚さ比の種類:</translation>
    </message>
    <message>
        <source>Sum by Sum</source>
        <translation>和の比</translation>
    </message>
    <message>
        <source>Mean</source>
        <translation>比の平均</translation>
    </message>
    <message>
        <source>Least Square</source>
        <translation>最小二乗</translation>
    </message>
    <message>
        <source>Least Square(NB)</source>
        <translation>最小二乗(ブランク差引なし)</translation>
    </message>
    <message>
        <source>Victreen</source>
        <translation>ビクトリーン</translation>
    </message>
    <message>
        <source>mut type of References</source>
        <translation>μt の種類  参照試料</translation>
    </message>
    <message>
        <source>Use Vic</source>
        <translation>ビクトリーン線を差し引く</translation>
    </message>
    <message>
        <source>  of Target</source>
        <translation>  試料</translation>
    </message>
    <message>
        <source>(</source>
        <translation></translation>
    </message>
    <message>
        <source>Vic1</source>
        <translation>吸収端前の線</translation>
    </message>
    <message>
        <source>Vic2</source>
        <translation>吸収端後の線</translation>
    </message>
    <message>
        <source>)</source>
        <translation></translation>
    </message>
    <message>
        <source>Calc Type for t, mu0, and k : </source>
        <translation>t, mu0, k の求め方 : </translation>
    </message>
    <message>
        <source>Exact 4 points</source>
        <translation>4 点の厳密解</translation>
    </message>
    <message>
        <source>When drawing all mut</source>
        <translation>すべての μt を描くとき</translation>
    </message>
    <message>
        <source>No normalize</source>
        <translation>規格化しない</translation>
    </message>
    <message>
        <source>Sub pre Vic.</source>
        <translation>吸収端前の線を差し引く</translation>
    </message>
    <message>
        <source>Normalized by edge jump</source>
        <translation>エッジジャンプで規格化</translation>
    </message>
    <message>
        <source>Normalized by 2 Vics </source>
        <translation>2 本のビクトリーン線で規格化 </translation>
    </message>
    <message>
        <source>No.</source>
        <translation>番号</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>使用</translation>
    </message>
    <message>
        <source>T.Ratio.</source>
        <translation>厚さ比</translation>
    </message>
    <message>
        <source>V.Point</source>
        <translation>V 点</translation>
    </message>
    <message>
        <source>Energy[eV]</source>
        <translation>エネルギー[eV]</translation>
    </message>
    <message>
        <source>mut(Ref.1)</source>
        <translation>μt(参照 1)</translation>
    </message>
    <message>
        <source>mut(Ref.2)</source>
        <translation>μt(参照 2)</translation>
    </message>
    <message>
        <source>mut(Target)</source>
        <translation>μt(試料)</translation>
    </message>
    <message>
        <source>mut(Blank)</source>
        <translation>μt(ブランク)</translation>
    </message>
    <message>
        <source>V Point is not selected.</source>
        <translation>V 点が選ばれていません。</translation>
    </message>
    <message>
        <source>V Point is not selected</source>
        <translation>V 点が選ばれていません</translation>
    </message>
    <message>
        <source>Ref File1 is not valid.</source>
        <translation>参照試料 1 のファイルが有効ではありません。</translation>
    </message>
    <message>
        <source>Ref File2 is not valid.</source>
        <translation>参照試料 2 のファイルが有効ではありません。</translation>
    </message>
    <message>
        <source>Target File1 is not valid.</source>
        <translation>試料のファイルが有効ではありません。</translation>
    </message>
    <message>
        <source>Number of selected data sets %1 is not %2.</source>
        <translation>選ばれたデータの数 %1 が %2 ではありません。</translation>
    </message>
    <message>
        <source>3ps: a = %1, Valence = %2</source>
        <translation>3 点法: a = %1, 価数 = %2</translation>
    </message>
    <message>
        <source>a = %1, Valence = %2, t/ts = %3</source>
        <translation>a = %1, 価数 = %2, t/ts = %3</translation>
    </message>
    <message>
        <source>4ps2: a = %1, Valence = %2, t/ts = %3</source>
        <translation>4 点法(最小二乗): a = %1, 価数 = %2, t/ts = %3</translation>
    </message>
    <message>
        <source>sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, lsB(NB) = %6, Vic2 = %7</source>
        <translation>和の比 = %1, 比の平均 = %2, 最小二乗 A = %3, 最小二乗 B = %4, 最小二乗 A(ブランク差引なし) = %5, 最小二乗 B(ブランク差引なし) = %6, ビクトリーン = %7</translation>
    </message>
    <message>
        <source>Energy Range is not selected, which should by selected by CB of TR.</source>
        <translation>エネルギー範囲が選ばれていません。「厚さ比」のチェックボックスで選んでください。</translation>
    </message>
    <message>
        <source>Result of LCF : %1 %2 %3</source>
        <translation>線形結合フィットの結果 : %1 %2 %3</translation>
    </message>
    <message>
        <source>a : (1-a) = %1 : %2,  Valence = %3</source>
        <translation>a : (1-a) = %1 : %2,  価数 = %3</translation>
    </message>
    <message>
        <source>Can&apos;t open the file [%1]</source>
        <translation>ファイル [%1] を開けません</translation>
    </message>
    <message>
        <source>4ps</source>
        <translation></translation>
    </message>
    <message>
        <source>Thick.</source>
        <translation></translation>
    </message>
    <message>
        <source>Num.</source>
        <translation></translation>
    </message>
    <message>
        <source>Eng.[eV]</source>
        <translation></translation>
    </message>
    <message>
        <source>mut</source>
        <translation></translation>
    </message>
    <message>
        <source>M2</source>
        <translation></translation>
    </message>
    <message>
        <source>M3</source>
        <translation></translation>
    </message>
</context>
<context>
    <name>PopBase</name>
    <message>
        <source>Frame</source>
        <translation></translation>
    </message>
</context>
</TS>
