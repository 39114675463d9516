<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>Output</name>
    <message>
        <source>Valence</source>
        <translation>価数</translation>
    </message>
    <message>
        <source>t/ts</source>
        <translation>t/ts</translation>
    </message>
    <message>
        <source>no result: %1</source>
        <translation>結果なし: %1</translation>
    </message>
    <message>
        <source>below %1: %2</source>
        <translation>%1 未満: %2</translation>
    </message>
    <message>
        <source>above %1: %2</source>
        <translation>%1 超: %2</translation>
    </message>
    <message>
        <source>t/ts below %1, shown palest: %2</source>
        <translation>t/ts が %1 未満 (最も淡い色で表示): %2</translation>
    </message>
    <message>
        <source>t/ts above %1, shown fullest: %2</source>
        <translation>t/ts が %1 超 (最も濃い色で表示): %2</translation>
    </message>
    <message>
        <source>covered by other pixels: %1</source>
        <translation>ほかの画素に隠れた画素: %1</translation>
    </message>
    <message>
        <source>a dot shows one of %1 x %2 pixels</source>
        <translation>1 点は %1 × %2 画素のうちの 1 画素を示す</translation>
    </message>
    <message>
        <source>the axes have different scales</source>
        <translation>縦軸と横軸の縮尺は異なる</translation>
    </message>
    <message>
        <source>Position 1 (units of the stage)</source>
        <translation>位置 1 (ステージの単位)</translation>
    </message>
    <message>
        <source>Position 2 (units of the stage)</source>
        <translation>位置 2 (ステージの単位)</translation>
    </message>
    <message>
        <source>x (pixels)</source>
        <translation>x (画素)</translation>
    </message>
    <message>
        <source>y (pixels)</source>
        <translation>y (画素)</translation>
    </message>
    <message>
        <source>x (µm)</source>
        <translation>x (µm)</translation>
    </message>
    <message>
        <source>y (µm)</source>
        <translation>y (µm)</translation>
    </message>
    <message>
        <source>Column</source>
        <translation>列</translation>
    </message>
    <message>
        <source>Row</source>
        <translation>行</translation>
    </message>
    <message>
        <source>The map is too large.</source>
        <translation>マップが大きすぎます。</translation>
    </message>
    <message>
        <source>The number of histogram boxes is too large.</source>
        <translation>ヒストグラムの区間数が多すぎます。</translation>
    </message>
    <message>
        <source>Targets</source>
        <translation>試料</translation>
    </message>
    <message>
        <source>refused</source>
        <translation>計算不可</translation>
    </message>
    <message>
        <source>with warnings</source>
        <translation>警告あり</translation>
    </message>
    <message>
        <source>Maps</source>
        <translation>マップ</translation>
    </message>
    <message>
        <source>maps refused</source>
        <translation>計算できないマップ</translation>
    </message>
    <message>
        <source>Refused targets come first. The heading of a column sorts by it. Figures have six digits here and all in results.csv.</source>
        <translation>計算できなかった試料を最初に示します。列の見出しを押すと並べ替えます。数値はここでは 6 桁、results.csv では全桁です。</translation>
    </message>
    <message>
        <source>Valence in the order of the job</source>
        <translation>ジョブの順に見た価数</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>メッセージ</translation>
    </message>
    <message>
        <source>There are none.</source>
        <translation>ありません。</translation>
    </message>
    <message>
        <source>What was asked</source>
        <translation>ジョブの内容</translation>
    </message>
    <message>
        <source>Inputs</source>
        <translation>入力ファイル</translation>
    </message>
    <message>
        <source>Report of %1</source>
        <translation>%1 の報告</translation>
    </message>
    <message>
        <source>Made by drovik %1. The page needs no network and no file beside it.</source>
        <translation>drovik %1 で作成。このページはネットワークもほかのファイルも必要としません。</translation>
    </message>
    <message>
        <source>Valence by thickness: thin pixels are pale</source>
        <translation>価数と厚さ: 薄い画素ほど淡い色で示す</translation>
    </message>
    <message>
        <source>Histogram of valences</source>
        <translation>価数のヒストグラム</translation>
    </message>
    <message>
        <source>Histogram of t/ts</source>
        <translation>t/ts のヒストグラム</translation>
    </message>
    <message>
        <source>Map of valences</source>
        <translation>価数のマップ</translation>
    </message>
    <message>
        <source>Map of t/ts</source>
        <translation>t/ts のマップ</translation>
    </message>
    <message>
        <source>t/ts against valence</source>
        <translation>t/ts と価数</translation>
    </message>
    <message>
        <source>Valence by the point method against that by the fit</source>
        <translation>点法による価数とフィットによる価数</translation>
    </message>
    <message>
        <source>Reference 1</source>
        <translation>参照試料 1</translation>
    </message>
    <message>
        <source>Reference 2</source>
        <translation>参照試料 2</translation>
    </message>
    <message>
        <source>Blank</source>
        <translation>ブランク</translation>
    </message>
    <message>
        <source>The picture %1 is missing.</source>
        <translation>画像 %1 がありません。</translation>
    </message>
    <message>
        <source>The picture %1 is left to its file, as the page would be too large.</source>
        <translation>ページが大きくなりすぎるため、画像 %1 はファイルでご覧ください。</translation>
    </message>
    <message>
        <source>The values under the pointer are those of each pixel.</source>
        <translation>ポインターの位置の値として、すべての画素の値を示します。</translation>
    </message>
    <message>
        <source>The values under the pointer are those of one pixel out of each block of %1 x %1.</source>
        <translation>ポインターの位置の値として、%1 × %1 画素ごとに 1 画素の値を示します。</translation>
    </message>
    <message>
        <source>Point at a map, or choose it with Tab and move with the arrow keys.</source>
        <translation>マップを指すか、Tab キーで選んで矢印キーで動かしてください。</translation>
    </message>
    <message>
        <source>position (%1, %2): </source>
        <translation>位置 (%1, %2): </translation>
    </message>
    <message>
        <source>column %1, row %2: </source>
        <translation>%1 列 %2 行: </translation>
    </message>
    <message>
        <source>valence %1</source>
        <translation>価数 %1</translation>
    </message>
    <message>
        <source>, t/ts %1</source>
        <translation>、t/ts %1</translation>
    </message>
    <message>
        <source>no result</source>
        <translation>結果なし</translation>
    </message>
    <message>
        <source>Refused:</source>
        <translation>計算不可:</translation>
    </message>
    <message>
        <source>Graphs</source>
        <translation>グラフ</translation>
    </message>
    <message>
        <source>Target</source>
        <translation>試料</translation>
    </message>
    <message>
        <source>Valence (fit)</source>
        <translation>価数 (フィット)</translation>
    </message>
    <message>
        <source>a</source>
        <translation>a</translation>
    </message>
    <message>
        <source>a (fit)</source>
        <translation>a (フィット)</translation>
    </message>
    <message>
        <source>R factor (fit)</source>
        <translation>R 因子 (フィット)</translation>
    </message>
    <message>
        <source>Edge jump</source>
        <translation>エッジジャンプ</translation>
    </message>
    <message>
        <source>Method</source>
        <translation>方法</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>マップ</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>列数</translation>
    </message>
    <message>
        <source>Rows</source>
        <translation>行数</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>結果なし</translation>
    </message>
    <message>
        <source>Valence, mean</source>
        <translation>価数の平均</translation>
    </message>
    <message>
        <source>Valence, median</source>
        <translation>価数の中央値</translation>
    </message>
    <message>
        <source>Valence, standard deviation</source>
        <translation>価数の標準偏差</translation>
    </message>
    <message>
        <source>t/ts, mean</source>
        <translation>t/ts の平均</translation>
    </message>
    <message>
        <source>t/ts, median</source>
        <translation>t/ts の中央値</translation>
    </message>
    <message>
        <source>t/ts, standard deviation</source>
        <translation>t/ts の標準偏差</translation>
    </message>
    <message>
        <source>Below the histogram</source>
        <translation>ヒストグラムの下</translation>
    </message>
    <message>
        <source>Above the histogram</source>
        <translation>ヒストグラムの上</translation>
    </message>
    <message>
        <source>Refusal</source>
        <translation>計算できない理由</translation>
    </message>
    <message>
        <source>Doubtful:</source>
        <translation>要確認:</translation>
    </message>
    <message>
        <source>No.</source>
        <translation>番号</translation>
    </message>
    <message>
        <source>Remarks</source>
        <translation>備考</translation>
    </message>
    <message>
        <source>%1 more targets are in results.csv.</source>
        <translation>ほかの %1 件は results.csv にあります。</translation>
    </message>
    <message>
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>%1 more files are in run.sqlite.</source>
        <translation>ほかの %1 件は run.sqlite にあります。</translation>
    </message>
    <message>
        <source>number of the target</source>
        <translation>試料の番号</translation>
    </message>
    <message>
        <source>Valence of each target, in the order of the job</source>
        <translation>各試料の価数 (ジョブの順)</translation>
    </message>
    <message>
        <source>point method</source>
        <translation>点法</translation>
    </message>
    <message>
        <source>linear combination fit</source>
        <translation>線形結合フィット</translation>
    </message>
    <message>
        <source>A stroke reaches from the lowest to the highest of neighbours.</source>
        <translation>縦線は、隣り合う試料の最小値から最大値までを示します。</translation>
    </message>
    <message>
        <source>Values beyond the scale, shown at its edge: %1</source>
        <translation>目盛りの外にあり、端に示した値: %1</translation>
    </message>
    <message>
        <source> ± %1 (counting)</source>
        <translation> ± %1（計数）</translation>
    </message>
    <message>
        <source> ± %1 (references)</source>
        <translation> ± %1（参照試料）</translation>
    </message>
    <message>
        <source>, %1 for +0.1 eV</source>
        <translation>、+0.1 eV で %1</translation>
    </message>
    <message>
        <source>Closure: with Ref 1 and Ref 2 in the target's place the method finds a = %1 and %2; it should find 1 and 0.</source>
        <translation>クロージャー: 参照試料 1 と 2 を試料の代わりに使うと a = %1 と %2。1 と 0 になるはずです。</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 ～ %2</translation>
    </message>
    <message>
        <source>has no bounds</source>
        <translation>限りがない</translation>
    </message>
    <message>
        <source>How sure the valences are</source>
        <translation>価数の確かさ</translation>
    </message>
    <message>
        <source>%1 % interval</source>
        <translation>%1 % 区間</translation>
    </message>
    <message>
        <source>1 % of leaked light</source>
        <translation>光の漏れ 1 %</translation>
    </message>
    <message>
        <source>± (counting): standard deviation by the noise of the target alone; measuring it longer makes it smaller.</source>
        <translation>±（計数）: 試料だけのノイズによる標準偏差。長く測れば小さくなります。</translation>
    </message>
    <message>
        <source>± (references): standard deviation by the noise of references and blank, the same error in all targets; a mean over targets does not make it smaller.</source>
        <translation>±（参照試料）: 参照試料とブランクのノイズによる標準偏差。全試料に同じ誤差として入り、平均しても小さくなりません。</translation>
    </message>
    <message>
        <source>for +0.1 eV: by how much the valence changes where the target's energies are 0.1 eV higher; counting does not see it, and it often limits the result.</source>
        <translation>+0.1 eV で: 試料のエネルギーが 0.1 eV 高いときの価数の変化。計数では見えず、しばしばこれが結果の限界になります。</translation>
    </message>
    <message>
        <source>%1 % interval: where the same method would find the valence without noise, by both deviations together; it has no bounds where the target is too thin or too noisy.</source>
        <translation>%1 % 区間: ノイズがなければ同じ方法で価数が入る範囲（両方の標準偏差による）。試料が薄すぎるかノイズが大きすぎると限りがありません。</translation>
    </message>
    <message>
        <source>1 % of leaked light: by how much the valence changes where 1 % of the light goes past the sample; mu-t is taken for absolute.</source>
        <translation>光の漏れ 1 %: 光の 1 % が試料を通らないときの価数の変化。μt を絶対値とみなします。</translation>
    </message>
    <message>
        <source>Closure: far from 1 and 0 the crossings or the thickness ratio are wrong; an error of the target alone does not show in it.</source>
        <translation>クロージャー: 1 と 0 から遠ければ交点か厚さ比が間違っています。試料だけの誤りは現れません。</translation>
    </message>
    <message>
        <source>What counting does not see:</source>
        <translation>計数では見えないもの:</translation>
    </message>
    <message>
        <source>What counting does not see of %1 more targets is told by drovik-batch --verbose.</source>
        <translation>ほか %1 個の試料について計数では見えないものは drovik-batch --verbose で表示されます。</translation>
    </message>
    <message>
        <source>The valences are doubtful.</source>
        <translation>価数は疑わしい。</translation>
    </message>
    <message>
        <source>The crossings or the thickness ratio are wrong.</source>
        <translation>交点か厚さ比が間違っています。</translation>
    </message>
    <message>
        <source>target 0.1 eV higher: valence </source>
        <translation>試料が 0.1 eV 高い: 価数 </translation>
    </message>
    <message>
        <source>Ref 1 0.1 eV higher: valence </source>
        <translation>参照試料 1 が 0.1 eV 高い: 価数 </translation>
    </message>
    <message>
        <source>Ref 2 0.1 eV higher: valence </source>
        <translation>参照試料 2 が 0.1 eV 高い: 価数 </translation>
    </message>
    <message>
        <source>1 % of the light past the target: valence </source>
        <translation>光の 1 % が試料を通らない: 価数 </translation>
    </message>
    <message>
        <source>, if mu-t is absolute</source>
        <translation>（μt が絶対値なら）</translation>
    </message>
    <message>
        <source>uneven thickness: valence </source>
        <translation>厚さのむら: 価数 </translation>
    </message>
    <message>
        <source>three points: valence </source>
        <translation>3 点法: 価数 </translation>
    </message>
    <message>
        <source>four points: valence </source>
        <translation>4 点法: 価数 </translation>
    </message>
    <message>
        <source>linear combination fit: valence </source>
        <translation>線形結合フィット: 価数 </translation>
    </message>
    <message>
        <source>closure: valence off by </source>
        <translation>クロージャー: 価数のずれ </translation>
    </message>
    <message>
        <source>a outside 0 to 1 by </source>
        <translation>a が 0〜1 の外: 標準偏差の </translation>
    </message>
    <message>
        <source> standard deviations</source>
        <translation> 倍</translation>
    </message>
    <message>
        <source>weights of the fit: sum </source>
        <translation>フィットの重みの和 </translation>
    </message>
    <message>
        <source>fit: reduced chi-square </source>
        <translation>フィット: 換算カイ二乗 </translation>
    </message>
    <message>
        <source>noise of the references: valence of the fit </source>
        <translation>参照試料のノイズ: フィットの価数 </translation>
    </message>
    <message>
        <source>noise of the references: moves the fit by </source>
        <translation>参照試料のノイズ: フィットのずれは標準偏差の </translation>
    </message>
    <message>
        <source> of its standard deviations</source>
        <translation> 倍</translation>
    </message>
    <message>
        <source>largest mu-t </source>
        <translation>最大の μt </translation>
    </message>
    <message>
        <source>edge jump </source>
        <translation>エッジジャンプ </translation>
    </message>
    <message>
        <source>these readings are not photons: their scatter has </source>
        <translation>読み値は光子の数ではありません: ばらつきの分散は光子の </translation>
    </message>
    <message>
        <source> times the variance</source>
        <translation> 倍です</translation>
    </message>
    <message>
        <source>A bar reaches one standard deviation, by target and references together, to either side.</source>
        <translation>棒の長さは両側に標準偏差 1 つ分（試料と参照試料を合わせたもの）です。</translation>
    </message>
    <message>
        <source>In %1 of %2 targets 0.1 eV of the energy changes the valence by more than its standard deviation: not counting limits them, but how well the energies are known.</source>
        <translation>%2 個のうち %1 個の試料では、エネルギーの 0.1 eV が標準偏差より大きく価数を変えます。結果の限界は計数ではなく、エネルギーの確かさです。</translation>
    </message>
    <message>
        <source>± (counting)</source>
        <translation>±（計数）</translation>
    </message>
    <message>
        <source>± (references)</source>
        <translation>±（参照試料）</translation>
    </message>
    <message>
        <source>σ of the valence</source>
        <translation>価数の σ</translation>
    </message>
    <message>
        <source>σ of t/ts</source>
        <translation>t/ts の σ</translation>
    </message>
    <message>
        <source>valence means nothing: %1</source>
        <translation>価数に意味なし: %1</translation>
    </message>
    <message>
        <source>Map of valences that mean something: dark red where t/ts is not known to a third</source>
        <translation>意味のある価数のマップ: t/ts が 3 分の 1 の精度でわからない画素は暗い赤</translation>
    </message>
    <message>
        <source>Standard deviation of each pixel's valence, by counting alone</source>
        <translation>画素ごとの価数の標準偏差 (計数のみ)</translation>
    </message>
    <message>
        <source>Standard deviation of each pixel's t/ts, by counting alone</source>
        <translation>画素ごとの t/ts の標準偏差 (計数のみ)</translation>
    </message>
    <message>
        <source>V point %1</source>
        <translation>V 点 %1</translation>
    </message>
    <message>
        <source>Energy (eV)</source>
        <translation>エネルギー (eV)</translation>
    </message>
    <message>
        <source>mu-t, normalized</source>
        <translation>規格化した μt</translation>
    </message>
    <message>
        <source>standard deviation of the valence at a = 1/2, by counting</source>
        <translation>a = 1/2 での価数の標準偏差 (計数)</translation>
    </message>
    <message>
        <source>change of the valence for 0.1 eV</source>
        <translation>0.1 eV による価数の変化</translation>
    </message>
    <message>
        <source>the best, drawn above</source>
        <translation>最良 (上の図)</translation>
    </message>
    <message>
        <source>front: beaten by none in both</source>
        <translation>両方で上回るものがない選び方</translation>
    </message>
    <message>
        <source>other choices</source>
        <translation>ほかの選び方</translation>
    </message>
</context>
</TS>
